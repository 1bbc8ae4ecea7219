// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/bpm_dialog.h"

#include <wx/button.h>
#include <wx/sizer.h>

#include "doc/selection_tempo.h"
#include "ui/number_text.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "BPM calculator";
constexpr const char* kBeats = "Beat number";
constexpr double kBeatsAtFirst = 4;
constexpr int kMargin = 16;
constexpr int kFieldWidth = 112;

wxString tempoText(double beatsPerMinute) { return wxString::Format("%.2f BPM", beatsPerMinute); }

}  // namespace

CBpmDlg::CBpmDlg(wxWindow* parent, const CPlumettaDoc& doc, WindowProfile& profile)
    : wxDialog(parent, wxID_ANY, "BPM calculator"),
      doc_(doc),
      profile_(profile),
      beatsField_(new wxTextCtrl(this, wxID_ANY,
                                 toWx(numberText(profile.real(kSection, kBeats, kBeatsAtFirst))),
                                 wxDefaultPosition, FromDIP(wxSize(kFieldWidth, -1)))),
      tempo_(makeResult()),
      tapped_(makeResult()) {
  auto* tapButton = new wxButton(this, wxID_ANY, "&Tap", wxDefaultPosition, FromDIP(wxSize(kFieldWidth, -1)));
  tapButton->SetToolTip("Tap the beat here, or with the space bar");
  auto* grid = new wxFlexGridSizer(3, FromDIP(wxSize(12, 8)));
  grid->AddGrowableCol(2);
  addRow(*grid, "&Beats in the selection:", beatsField_, tempo_);
  addRow(*grid, "Tap the beat (space bar):", tapButton, tapped_);
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(grid, 1, wxEXPAND | wxALL, FromDIP(kMargin));
  all->Add(CreateButtonSizer(wxCLOSE), 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kMargin));
  SetEscapeId(wxID_CLOSE);
  SetAffirmativeId(wxID_CLOSE);
  SetSizerAndFit(all);
  CentreOnParent();

  beatsField_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { calculate(); });
  tapButton->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { tap(); });
  Bind(wxEVT_CHAR_HOOK, &CBpmDlg::onCharHook, this);
  for (wxWindow* child : GetChildren()) {
    child->Bind(wxEVT_KEY_UP, [this](wxKeyEvent& event) {
      if (event.GetKeyCode() == WXK_SPACE) spaceDown_ = false;
      event.Skip();
    });
  }
  calculate();
  beatsField_->SetFocus();
  beatsField_->SelectAll();
}

CBpmDlg::~CBpmDlg() {
  if (const auto typed = beats()) profile_.setReal(kSection, kBeats, *typed);
}

wxStaticText* CBpmDlg::makeResult() {
  auto* result = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                  wxALIGN_RIGHT | wxST_NO_AUTORESIZE);
  result->SetFont(GetFont().Bold().Larger());
  result->SetMinSize(result->GetTextExtent(tempoText(88888.88)));
  return result;
}

void CBpmDlg::addRow(wxSizer& grid, const wxString& label, wxWindow* field, wxWindow* result) {
  grid.Add(new wxStaticText(this, wxID_ANY, label), 0, wxALIGN_CENTRE_VERTICAL);
  grid.Add(field, 0, wxALIGN_CENTRE_VERTICAL);
  grid.Add(result, 1, wxALIGN_CENTRE_VERTICAL | wxEXPAND);
}

std::optional<double> CBpmDlg::beats() const {
  const auto beats = parseNumber(fromWx(beatsField_->GetValue()));
  return beats && tempoProblem(doc_, *beats).empty() ? beats : std::nullopt;
}

void CBpmDlg::calculate() {
  const auto typed = beats();
  tempo_->SetLabel(typed ? tempoText(tempoOfSelection(doc_, *typed)) : wxString(L"\u2013"));
}

void CBpmDlg::tap() {
  const auto tempo = taps_.tap(static_cast<double>(watch_.TimeInMicro().ToDouble()) * 1e-6);
  tapped_->SetLabel(tempo ? tempoText(*tempo) : wxString(L"\u2026"));
}

// The space bar taps wherever the focus is; held down it counts once. Not every toolkit tells a repeated key.
void CBpmDlg::onCharHook(wxKeyEvent& event) {
  if (event.GetKeyCode() != WXK_SPACE) {
    event.Skip();
    return;
  }
  if (!spaceDown_) tap();
  spaceDown_ = true;
}

}  // namespace plumetta
