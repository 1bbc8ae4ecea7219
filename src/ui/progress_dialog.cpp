// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/progress_dialog.h"

#include <wx/app.h>
#include <wx/button.h>
#include <wx/evtloop.h>
#include <wx/sizer.h>

#include <cmath>

namespace plumetta {
namespace {

constexpr int kGaugeSteps = 1000;

}  // namespace

wxString remainingText(double fractionDone, std::chrono::steady_clock::time_point begun) {
  const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - begun;
  // The first estimates jump about too much to be worth reading.
  if (fractionDone < 0.02 || spent.count() < 1.0) return wxString();
  const double seconds = spent.count() * (1.0 - fractionDone) / fractionDone;
  if (seconds < 60.0) return wxString::Format("About %d s left", static_cast<int>(std::ceil(seconds)));
  return wxString::Format("About %d min left", static_cast<int>(std::ceil(seconds / 60.0)));
}

ProgressDialog::ProgressDialog(wxWindow* parent, const wxString& title,
                               std::chrono::steady_clock::time_point begun)
    : wxDialog(parent, wxID_ANY, title, wxDefaultPosition, wxDefaultSize, wxCAPTION | wxCLOSE_BOX),
      begun_(begun),
      focusBefore_(wxWindow::FindFocus()) {
  detail_ = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                             wxST_ELLIPSIZE_MIDDLE | wxST_NO_AUTORESIZE);
  detail_->Hide();
  gauge_ = new wxGauge(this, wxID_ANY, kGaugeSteps, wxDefaultPosition, FromDIP(wxSize(360, -1)), wxGA_SMOOTH);
  remaining_ = new wxStaticText(this, wxID_ANY, wxString());
  auto* cancelButton = new wxButton(this, wxID_CANCEL);
  auto* lower = new wxBoxSizer(wxHORIZONTAL);
  lower->Add(remaining_, 1, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(16));
  lower->Add(cancelButton);
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(detail_, 0, wxEXPAND | wxLEFT | wxRIGHT | wxTOP, FromDIP(16));
  all->Add(gauge_, 0, wxEXPAND | wxLEFT | wxRIGHT | wxTOP, FromDIP(16));
  all->Add(lower, 0, wxEXPAND | wxALL, FromDIP(16));
  SetSizerAndFit(all);
  CentreOnParent();
  cancelButton->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { cancel(); });
  Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { cancel(); });
  othersDisabled_ = std::make_unique<wxWindowDisabler>(this);
  Show();
}

ProgressDialog::~ProgressDialog() {
  othersDisabled_.reset();
  if (focusBefore_) focusBefore_->SetFocus();
}

void ProgressDialog::cancel() {
  cancelled_ = true;
  FindWindow(wxID_CANCEL)->Disable();
}

void ProgressDialog::setDetail(const wxString& text) {
  if (detail_->GetLabel() == text) return;
  detail_->SetLabel(text);
  if (detail_->IsShown()) return;
  detail_->Show();
  Fit();
}

bool ProgressDialog::update(float fractionDone) {
  gauge_->SetValue(static_cast<int>(std::lround(fractionDone * kGaugeSteps)));
  remaining_->SetLabel(remainingText(fractionDone, begun_));
  if (wxEventLoopBase* loop = wxEventLoopBase::GetActive(); loop != nullptr && !loop->IsYielding()) {
    loop->YieldFor(wxEVT_CATEGORY_UI | wxEVT_CATEGORY_USER_INPUT | wxEVT_CATEGORY_TIMER);
  }
  return !cancelled_;
}

}  // namespace plumetta
