// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/scan_dialog.h"

#include <wx/button.h>
#include <wx/dirdlg.h>
#include <wx/sizer.h>

#include "platform/paths.h"
#include "platform/plugin_folders.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr int kGap = 8;
constexpr int kMargin = 16;
constexpr int kFolderWidth = 380;

constexpr const char* kSection = "Scan VST";
constexpr const char* kSubdir = "Subdir";
constexpr const char* kInstruments = "VSTi";
constexpr const char* kAdd = "Add";

// Those of the usual folders that are there.
wxArrayString offeredFolders(FileSystem& files) {
  wxArrayString folders;
  for (const std::string& folder : usualPluginFolders()) {
    const wxString name = toWx(folder);
    if (files.kind(folder) == FileKind::folder && folders.Index(name) == wxNOT_FOUND) folders.Add(name);
  }
  return folders;
}

}  // namespace

CVSTScanConfigurationDlg::CVSTScanConfigurationDlg(wxWindow* parent, Application& app, WindowProfile& profile)
    : wxDialog(parent, wxID_ANY, "Scan for VST plug-ins"), app_(app), profile_(profile) {
  auto* all = new wxBoxSizer(wxVERTICAL);
  auto* column = new wxBoxSizer(wxVERTICAL);
  column->Add(makeFolderRow(), 0, wxEXPAND);
  problem_ = new wxStaticText(this, wxID_ANY, wxString());
  problem_->SetForegroundColour(wxColour(200, 60, 50));
  column->Add(problem_, 0, wxTOP | wxBOTTOM, FromDIP(kGap / 2));
  recurse_ = addOption(*column, "&Subfolders too", kSubdir, true);
  instruments_ = addOption(*column, "List &instruments too", kInstruments, false);
  append_ = addOption(*column, "&Add to the list (else it is made anew)", kAdd, false);
  all->Add(column, 1, wxEXPAND | wxALL, FromDIP(kMargin));
  all->Add(CreateButtonSizer(wxOK | wxCANCEL), 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kMargin));
  FindWindow(wxID_OK)->SetLabel("Sca&n");
  SetSizerAndFit(all);
  CentreOnParent();
  Bind(wxEVT_BUTTON, &CVSTScanConfigurationDlg::onOk, this, wxID_OK);
  folder_->SetFocus();
}

wxSizer* CVSTScanConfigurationDlg::makeFolderRow() {
  const wxArrayString offered = offeredFolders(app_.files());
  const std::string& stored = app_.settings().plugins.pluginFolder;
  // The setting begins as a folder that may not be there, and is no good advice even where it is.
  const bool chosen = stored != kDefaultFolder && app_.files().kind(stored) == FileKind::folder;
  const wxString folder = chosen || offered.empty() ? toWx(stored) : offered[0];
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  row->Add(new wxStaticText(this, wxID_ANY, "&Folder:"), 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap));
  folder_ =
      new wxComboBox(this, wxID_ANY, folder, wxDefaultPosition, FromDIP(wxSize(kFolderWidth, -1)), offered);
  row->Add(folder_, 1, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap));
  auto* browseButton = new wxButton(this, wxID_ANY, "&Browse…");
  browseButton->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { browse(); });
  row->Add(browseButton, 0, wxALIGN_CENTRE_VERTICAL);
  folder_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { problem_->SetLabel(wxString()); });
  return row;
}

wxCheckBox* CVSTScanConfigurationDlg::addOption(wxSizer& column, const wxString& label, const char* key,
                                                bool fallback) {
  auto* box = new wxCheckBox(this, wxID_ANY, label);
  box->SetValue(profile_.integer(kSection, key, fallback ? 1 : 0) != 0);
  column.Add(box, 0, wxTOP, FromDIP(kGap));
  return box;
}

void CVSTScanConfigurationDlg::browse() {
  const std::string start = dialogFolder(app_.files(), fromWx(folder_->GetValue()));
  wxDirDialog dialog(this, "Folder of plug-ins", toWx(start), wxDD_DEFAULT_STYLE | wxDD_DIR_MUST_EXIST);
  if (dialog.ShowModal() == wxID_OK) folder_->SetValue(dialog.GetPath());
}

void CVSTScanConfigurationDlg::onOk(wxCommandEvent& event) {
  const std::string folder = absolutePath(fromWx(folder_->GetValue()));
  if (folder_->GetValue().empty() || app_.files().kind(folder) != FileKind::folder) {
    problem_->SetLabel("There is no such folder.");
    folder_->SetFocus();
    return;
  }
  const auto flag = [](const wxCheckBox* box) { return std::string(box->GetValue() ? "1" : "0"); };
  profile_.setTexts(kSection,
                    {{kSubdir, flag(recurse_)}, {kInstruments, flag(instruments_)}, {kAdd, flag(append_)}});
  if (isStorablePath(folder)) {
    app_.settings().plugins.pluginFolder = folder;
    app_.saveSettings();
  }
  event.Skip();
}

ScanOptions CVSTScanConfigurationDlg::options() const {
  ScanOptions options;
  options.folder = fromWx(folder_->GetValue());
  options.recurse = recurse_->GetValue();
  options.instruments = instruments_->GetValue();
  options.append = append_->GetValue();
  return options;
}

}  // namespace plumetta
