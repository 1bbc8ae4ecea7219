// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/statistics_dialog.h"

#include <wx/button.h>
#include <wx/clipbrd.h>
#include <wx/filedlg.h>
#include <wx/sizer.h>

#include "platform/paths.h"
#include "ui/document_tabs.h"
#include "ui/text.h"

namespace plumetta {
namespace {

// Where the labels, the values and their decibels begin. How many tabs the report sets before a value depends
// on the label's width in some typeface, so any number of them leads to the next of these.
constexpr size_t kStops[] = {4, 36, 46};
constexpr int kMargin = 16;
constexpr int kColumns = 64;
constexpr int kLines = 26;

}  // namespace

std::string alignedReport(const std::string& report) {
  std::string text;
  size_t column = 0;
  size_t stop = 0;  // the next of kStops
  char before = '\n';
  for (const char c : report) {
    if (c == '\r') continue;
    if (c == '\t') {
      const size_t target = stop < std::size(kStops) && before != '\t' ? kStops[stop++] : 0;
      const size_t blanks = target > column ? target - column : before == '\t' ? 0 : 1;
      text.append(blanks, ' ');
      column += blanks;
    } else {
      text += c;
      const bool continuesCharacter = (static_cast<unsigned char>(c) & 0xC0) == 0x80;
      column = c == '\n' ? 0 : column + (continuesCharacter ? 0 : 1);
      if (c == '\n') stop = 0;
    }
    before = c;
  }
  return text;
}

CStatisticsDlg::CStatisticsDlg(wxWindow* parent, CPlumettaDoc& doc)
    : wxDialog(parent, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      doc_(doc),
      text_(new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                           wxTE_MULTILINE | wxTE_READONLY | wxTE_DONTWRAP)),
      levels_(new wxCheckBox(this, wxID_ANY, "&Level figures")) {
  SetTitle(toWx("Statistics – " + doc.title()));
  text_->SetFont(wxFont(wxFontInfo(GetFont().GetPointSize()).Family(wxFONTFAMILY_TELETYPE)));
  text_->SetInitialSize(
      text_->GetSizeFromTextSize(kColumns * text_->GetCharWidth(), kLines * text_->GetCharHeight()));
  levels_->SetValue(true);
  auto* copyButton = new wxButton(this, wxID_COPY, "C&opy");
  auto* saveButton = new wxButton(this, wxID_SAVE, "&Save…");
  auto* closeButton = new wxButton(this, wxID_CLOSE);
  auto* buttons = new wxBoxSizer(wxHORIZONTAL);
  buttons->Add(levels_, 1, wxALIGN_CENTRE_VERTICAL);
  for (wxButton* button : {copyButton, saveButton, closeButton}) buttons->Add(button, 0, wxLEFT, FromDIP(8));
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(text_, 1, wxEXPAND | wxALL, FromDIP(kMargin));
  all->Add(buttons, 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kMargin));
  SetEscapeId(wxID_CLOSE);
  SetAffirmativeId(wxID_CLOSE);
  closeButton->SetDefault();
  SetSizerAndFit(all);
  CentreOnParent();
  closeButton->SetFocus();

  copyButton->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { copy(); });
  saveButton->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { save(); });
  levels_->Bind(wxEVT_CHECKBOX, [this](wxCommandEvent&) { compile(); });
  compile();
}

void CStatisticsDlg::compile() {
  Prompter& prompter = doc_.prompter();
  prompter.status("Compiling statistics...");
  {
    const BusyScope busy(prompter);
    text_->ChangeValue(toWx(alignedReport(doc_.statistics(levels_->GetValue()))));
  }
  prompter.status("Compiling statistics done");
}

void CStatisticsDlg::copy() {
  wxClipboardLocker clipboard;
  if (!!clipboard) wxTheClipboard->SetData(new wxTextDataObject(toWx(doc_.statistics(levels_->GetValue()))));
}

void CStatisticsDlg::save() {
  const wxString folder = isNamed(doc_) ? toWx(folderOf(doc_.wave().fileName())) : wxString();
  wxFileDialog dialog(this, "Save statistics", folder, toWx(doc_.title() + ".txt"),
                      "Text file (*.txt)|*.txt|All Files (*.*)|*.*", wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
  if (dialog.ShowModal() != wxID_OK) return;
  std::string path = fromWx(dialog.GetPath());
  if (extensionOf(path).empty()) path += ".txt";
  doc_.saveStatistics(path, levels_->GetValue());
}

}  // namespace plumetta
