// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/choice.h>
#include <wx/dialog.h>
#include <wx/gauge.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/timer.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "batch/batch_run.h"
#include "ui/window_profile.h"

namespace plumetta {

// Applies one function to every file of a folder on a thread of its own, and shows the log as it grows.
// Modal.
class CBatchProcessorDlg : public wxDialog {
 public:
  CBatchProcessorDlg(wxWindow* parent, Application& app, WindowProfile& profile);
  // Stops what runs.
  ~CBatchProcessorDlg() override;

 private:
  wxSizer* makeChoices();
  wxSizer* makeProgress();
  wxSizer* makeButtons();
  void addFolder(wxSizer& grid, const wxString& label, wxTextCtrl*& field, const wxString& question);
  void restoreValues();
  void storeValues();
  void browse(wxTextCtrl& field, const wxString& question);

  bool running() const { return worker_.joinable(); }
  void startOrStop();
  void start();
  // The question or message that keeps these settings from being used has been shown.
  bool accept(BatchSettings& settings);
  void finish();
  void showRunning();
  void follow();
  void appendToLog();
  void showProgress();
  void saveLog();
  void closeAsked(wxCloseEvent& event);

  Application& app_;
  WindowProfile& profile_;

  wxTextCtrl* input_ = nullptr;
  wxTextCtrl* output_ = nullptr;
  std::vector<wxWindow*> choices_;  // what is disabled while the batch runs
  wxChoice* function_ = nullptr;
  wxCheckBox* recurse_ = nullptr;
  wxGauge* gauge_ = nullptr;
  wxStaticText* state_ = nullptr;
  wxStaticText* remaining_ = nullptr;
  wxTextCtrl* logText_ = nullptr;
  wxButton* startStop_ = nullptr;
  wxButton* saveLog_ = nullptr;
  wxButton* close_ = nullptr;
  wxTimer timer_;

  std::string log_;  // as it is saved
  std::mutex pendingMutex_;
  std::string pending_;  // what the worker has written and the dialog has not shown yet
  std::atomic<bool> finished_{false};
  bool stopAsked_ = false;
  bool closing_ = false;  // once the worker has ended
  std::chrono::steady_clock::time_point begun_;
  std::unique_ptr<BatchRun> run_;
  std::thread worker_;
};

}  // namespace plumetta
