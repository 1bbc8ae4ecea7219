// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/dialog.h>
#include <wx/gauge.h>
#include <wx/stattext.h>
#include <wx/utils.h>
#include <wx/weakref.h>

#include <chrono>
#include <memory>

namespace plumetta {

// How much longer work of which this fraction is done will take, in words; empty while that can't be told.
wxString remainingText(double fractionDone, std::chrono::steady_clock::time_point begun);

// How far long work has come, with the one button that stops it. While it stands, every other window of the
// application takes no input but goes on drawing itself.
class ProgressDialog : public wxDialog {
 public:
  ProgressDialog(wxWindow* parent, const wxString& title, std::chrono::steady_clock::time_point begun);
  ~ProgressDialog() override;

  // A line about what is under way at the moment.
  void setDetail(const wxString& text);
  // Shows the fraction and lets waiting events through. False once the person has asked to stop.
  bool update(float fractionDone);

 private:
  void cancel();

  std::chrono::steady_clock::time_point begun_;
  wxStaticText* detail_ = nullptr;
  wxGauge* gauge_ = nullptr;
  wxStaticText* remaining_ = nullptr;
  bool cancelled_ = false;
  wxWeakRef<wxWindow> focusBefore_;
  std::unique_ptr<wxWindowDisabler> othersDisabled_;
};

}  // namespace plumetta
