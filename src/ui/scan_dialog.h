// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/checkbox.h>
#include <wx/combobox.h>
#include <wx/dialog.h>
#include <wx/stattext.h>

#include "app/application.h"
#include "ui/window_profile.h"
#include "vst/plugin_scan.h"

namespace plumetta {

// Which folder is searched for plug-ins, and how. OK keeps the choice for the next time.
class CVSTScanConfigurationDlg : public wxDialog {
 public:
  CVSTScanConfigurationDlg(wxWindow* parent, Application& app, WindowProfile& profile);

  // Once OK was chosen.
  ScanOptions options() const;

 private:
  wxSizer* makeFolderRow();
  wxCheckBox* addOption(wxSizer& column, const wxString& label, const char* key, bool fallback);
  void browse();
  void onOk(wxCommandEvent& event);

  Application& app_;
  WindowProfile& profile_;
  wxComboBox* folder_;
  wxStaticText* problem_;
  wxCheckBox* recurse_;
  wxCheckBox* instruments_;
  wxCheckBox* append_;
};

}  // namespace plumetta
