// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/dialog.h>
#include <wx/stattext.h>
#include <wx/stopwatch.h>
#include <wx/textctrl.h>

#include <optional>

#include "doc/document.h"
#include "doc/tap_tempo.h"
#include "ui/window_profile.h"

namespace plumetta {

// The tempo of the selection from the number of its beats, and the one that a person taps.
class CBpmDlg : public wxDialog {
 public:
  CBpmDlg(wxWindow* parent, const CPlumettaDoc& doc, WindowProfile& profile);
  ~CBpmDlg() override;

 private:
  // The beats typed, when they give a tempo.
  std::optional<double> beats() const;
  wxStaticText* makeResult();
  void addRow(wxSizer& grid, const wxString& label, wxWindow* field, wxWindow* result);
  void calculate();
  void tap();
  void onCharHook(wxKeyEvent& event);

  const CPlumettaDoc& doc_;
  WindowProfile& profile_;
  wxTextCtrl* beatsField_;
  wxStaticText* tempo_;
  wxStaticText* tapped_;
  TapTempo taps_;
  wxStopWatch watch_;
  bool spaceDown_ = false;
};

}  // namespace plumetta
