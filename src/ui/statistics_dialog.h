// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/checkbox.h>
#include <wx/dialog.h>
#include <wx/textctrl.h>

#include "doc/document.h"

namespace plumetta {

// The statistics report of a document: on the screen, for the clipboard, as a text file.
class CStatisticsDlg : public wxDialog {
 public:
  CStatisticsDlg(wxWindow* parent, CPlumettaDoc& doc);

 private:
  void compile();
  void copy();
  void save();

  CPlumettaDoc& doc_;
  wxTextCtrl* text_;
  wxCheckBox* levels_;
};

// The report with its tabs as blanks, every value of a kind in one column.
std::string alignedReport(const std::string& report);

}  // namespace plumetta
