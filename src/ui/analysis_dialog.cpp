// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/analysis_dialog.h"

#include <wx/display.h>

#include "ui/toolbar_icons.h"
#include "ui/window_place.h"

namespace plumetta {
namespace {

constexpr int kDepths[] = {60, 90, 120, 150};

}  // namespace

SampleState SampleState::of(const CPlumettaDoc& doc) {
  const CWave& wave = doc.wave();
  return {&doc, doc.journal().revision(), wave.samples(), wave.frames(), wave.sampleRate()};
}

AnalysisDlg::AnalysisDlg(wxWindow* parent, const wxString& title, const char* section, WindowProfile& profile)
    : wxDialog(parent, wxID_ANY, title, wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER | wxMAXIMIZE_BOX),
      profile_(profile),
      section_(section),
      readout_(new wxStaticText(this, wxID_ANY, " ", wxDefaultPosition, wxDefaultSize,
                                wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_END)),
      state_(new wxStaticText(this, wxID_ANY, " ")) {
  SetIcons(programIcons());
  Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { Hide(); });
  Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
    if (event.GetKeyCode() == WXK_ESCAPE) {
      Close();
    } else {
      event.Skip();
    }
  });
}

// ---- Choices --------------------------------------------------------------------------------------------

wxChoice* AnalysisDlg::addChoice(wxSizer& row, const wxString& label, const wxArrayString& choices,
                                 const char* key, int fallback, std::function<void()> chosen) {
  row.Add(new wxStaticText(this, wxID_ANY, label), 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap / 2));
  auto* choice = new wxChoice(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, choices);
  const int stored = profile_.integer(section_, key, fallback);
  choice->SetSelection(stored >= 0 && stored < static_cast<int>(choices.size()) ? stored : fallback);
  choice->Bind(wxEVT_CHOICE, [this, choice, key, chosen = std::move(chosen)](wxCommandEvent&) {
    profile_.setInteger(section_, key, choice->GetSelection());
    chosen();
  });
  row.Add(choice, 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(2 * kGap));
  return choice;
}

wxCheckBox* AnalysisDlg::addCheckBox(wxSizer& row, const wxString& label, const char* key, bool fallback,
                                     std::function<void()> chosen) {
  auto* box = new wxCheckBox(this, wxID_ANY, label);
  box->SetValue(profile_.integer(section_, key, fallback ? 1 : 0) != 0);
  box->Bind(wxEVT_CHECKBOX, [this, box, key, chosen = std::move(chosen)](wxCommandEvent&) {
    profile_.setInteger(section_, key, box->GetValue() ? 1 : 0);
    chosen();
  });
  row.Add(box, 0, wxALIGN_CENTRE_VERTICAL);
  return box;
}

wxSizer* AnalysisDlg::makeSpectrumControls(int smallestSize, int largestSize, SpectrumSettings usual,
                                           int usualDepthDb) {
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  wxArrayString windows, sizes, depths;
  for (int kind = 0; kind < kWindowKinds; ++kind) windows.Add(windowName(kind));
  for (int size = smallestSize; size <= largestSize; size *= 2) sizes.Add(std::to_string(size));
  for (const int depth : kDepths) depths.Add(wxString::Format("%d dB", depth));
  smallestSize_ = smallestSize;
  const int usualSize = sizes.Index(std::to_string(usual.size));
  window_ = addChoice(*row, "&Window:", windows, "Window", static_cast<int>(usual.window), settingsChosen);
  size_ = addChoice(*row, "S&ize:", sizes, "Size", usualSize, settingsChosen);
  const int usualRange = depths.Index(wxString::Format("%d dB", usualDepthDb));
  depth_ = addChoice(*row, "&Range:", depths, "Range", usualRange, [this] { showDecibels(); });
  logarithmic_ = addCheckBox(*row, "Lo&garithmic", "Logarithmic", true, [this] { showFrequencies(); });
  return row;
}

SpectrumSettings AnalysisDlg::spectrumSettings() const {
  return {smallestSize_ << size_->GetSelection(), static_cast<WindowKind>(window_->GetSelection())};
}

int AnalysisDlg::depthDb() const { return kDepths[depth_->GetSelection()]; }

// ---- Place ----------------------------------------------------------------------------------------------

void AnalysisDlg::takeLayout(wxSizer& all, wxWindow& main, const wxSize& usual, const wxSize& least) {
  auto* words = new wxBoxSizer(wxHORIZONTAL);
  words->Add(readout_, 1, wxALIGN_CENTRE_VERTICAL);
  words->Add(state_, 0, wxALIGN_CENTRE_VERTICAL | wxLEFT, FromDIP(kGap));
  all.Add(words, 0, wxEXPAND | wxALL, FromDIP(kMargin));
  main.SetMinSize(FromDIP(usual));
  SetSizer(&all);
  const wxSize size = all.CalcMin();
  main.SetMinSize(FromDIP(least));
  SetMinClientSize(all.CalcMin());
  SetClientSize(size);
  restorePlace();
}

bool AnalysisDlg::Show(bool show) {
  if (!show && IsShown()) storePlace();
  return wxDialog::Show(show);
}

void AnalysisDlg::storePlace() {
  const wxSize size = ToDIP(GetSize());
  profile_.setInteger(section_, "X", GetPosition().x);
  profile_.setInteger(section_, "Y", GetPosition().y);
  profile_.setInteger(section_, "Width", size.x);
  profile_.setInteger(section_, "Height", size.y);
}

// As far as that place can still be seen.
void AnalysisDlg::restorePlace() {
  const wxSize size(profile_.integer(section_, "Width", 0), profile_.integer(section_, "Height", 0));
  const wxPoint at(profile_.integer(section_, "X", -1), profile_.integer(section_, "Y", -1));
  if (size.x > 0 && size.y > 0) {
    wxSize wanted = FromDIP(size);
    wanted.IncTo(GetMinSize());
    SetSize(wanted);
  }
  if (size.x <= 0 || wxDisplay::GetFromPoint(at) == wxNOT_FOUND) {
    CentreOnParent();
  } else {
    Move(at);
  }
  keepOnDisplay(*this);
}

}  // namespace plumetta
