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

// The report sets one, two or three tabs behind a label, by its length; with stops so far apart all values
// stand in one column.
constexpr size_t kTabStop = 10;
constexpr int kMargin = 16;
constexpr int kColumns = 64;
constexpr int kLines = 30;

}  // namespace

std::string alignedReport(const std::string& report) {
  std::string text;
  size_t column = 0;
  for (const char c : report) {
    if (c == '\r') continue;
    if (c == '\t') {
      const size_t blanks = kTabStop - column % kTabStop;
      text.append(blanks, ' ');
      column += blanks;
      continue;
    }
    text += c;
    const bool continuesCharacter = (static_cast<unsigned char>(c) & 0xC0) == 0x80;
    column = c == '\n' ? 0 : column + (continuesCharacter ? 0 : 1);
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
