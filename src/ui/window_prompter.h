// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/window.h>

#include <chrono>
#include <functional>
#include <memory>

#include "core/prompter.h"
#include "ui/progress_dialog.h"

namespace plumetta {

// Talks to the person through boxes over the main window, the status line and the wait cursor.
class WindowPrompter : public Prompter {
 public:
  // Where boxes stand; null before the main window is there and once it is gone.
  void setParent(wxWindow* parent) { parent_ = parent; }
  std::function<void(const wxString&)> onStatus;

  void message(const std::string& text) override;
  bool question(const std::string& text) override;
  void status(const std::string& text) override;
  void setBusy(bool busy) override;
  WaveProgress beginProgress(const std::string& title) override;
  void endProgress() override;
  bool progressPart(int done, int all) override;
  bool confirmLoss(const std::string& text) override;

  // Whether the person wants to be asked about losses, and what keeps it when they no longer do.
  bool* asksOfLosses = nullptr;
  std::function<void()> onLossesSilenced;

  // Long work is under way: nothing else may be started and nothing closed.
  bool working() const { return depth_ > 0; }
  // A box or another modal dialog waits for the person: what it asks about must not change meanwhile.
  bool asking() const;

 private:
  using Clock = std::chrono::steady_clock;

  // Called every few hundred frames, so it looks at the clock and nothing else until an update is due.
  static bool onProgress(float fractionDone, void* self);
  bool showProgress(float fractionDone);
  wxWindow* boxParent() const;
  int showBox(const std::string& text, long style);

  wxWindow* parent_ = nullptr;
  int boxes_ = 0;  // of messages and questions that are up
  int depth_ = 0;  // of begun progresses; the outermost one is shown
  wxString title_;
  wxString detail_;                // of what is under way inside; empty for nothing
  int partsDone_ = 0, parts_ = 1;  // of the outermost progress
  Clock::time_point begun_, nextUpdate_;
  bool cancelled_ = false;
  int pausedBusy_ = 0;  // levels of the wait cursor given up while the dialog stands
  std::unique_ptr<ProgressDialog> dialog_;
};

}  // namespace plumetta
