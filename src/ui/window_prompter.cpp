// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window_prompter.h"

#include <wx/dialog.h>
#include <wx/msgdlg.h>
#include <wx/richmsgdlg.h>
#include <wx/utils.h>
#include <wx/weakref.h>

#include "ui/text.h"

namespace plumetta {
namespace {

constexpr auto kQuietTime = std::chrono::milliseconds(400);
constexpr auto kUpdateInterval = std::chrono::milliseconds(50);

int pauseBusyCursor() {
  int levels = 0;
  for (; wxIsBusy(); ++levels) wxEndBusyCursor();
  return levels;
}

void resumeBusyCursor(int levels) {
  for (; levels > 0; --levels) wxBeginBusyCursor();
}

// The usual cursor while a box is up, whatever is going on behind it.
class BusyPause {
 public:
  BusyPause() : levels_(pauseBusyCursor()) {}
  ~BusyPause() { resumeBusyCursor(levels_); }
  BusyPause(const BusyPause&) = delete;
  BusyPause& operator=(const BusyPause&) = delete;

 private:
  int levels_;
};

// The one that takes input; the last that was opened.
wxDialog* modalDialog() {
  wxDialog* modal = nullptr;
  for (wxWindow* window : wxTopLevelWindows) {
    auto* dialog = dynamic_cast<wxDialog*>(window);
    if (dialog != nullptr && dialog->IsModal()) modal = dialog;
  }
  return modal;
}

// The keys go back to the window that they came from, which may be one beside the main window.
class FocusKeeper {
 public:
  FocusKeeper() : focused_(wxWindow::FindFocus()) {}
  ~FocusKeeper() {
    if (!focused_) return;
    wxGetTopLevelParent(focused_)->Raise();
    focused_->SetFocus();
  }
  FocusKeeper(const FocusKeeper&) = delete;
  FocusKeeper& operator=(const FocusKeeper&) = delete;

 private:
  wxWeakRef<wxWindow> focused_;
};

}  // namespace

wxWindow* WindowPrompter::boxParent() const {
  if (dialog_) return dialog_.get();
  if (wxWindow* const modal = modalDialog()) return modal;
  wxWindow* const active = parent_ != nullptr ? wxGetTopLevelParent(wxGetActiveWindow()) : nullptr;
  return active != nullptr && active->GetParent() == parent_ && active->IsShown() ? active : parent_;
}

int WindowPrompter::showBox(const std::string& text, long style) {
  const BusyPause pause;
  const FocusKeeper focus;
  ++boxes_;
  const int answer = wxMessageBox(toWx(text), "Plumetta", style | wxCENTRE, boxParent());
  --boxes_;
  return answer;
}

void WindowPrompter::message(const std::string& text) { showBox(text, wxOK | wxICON_INFORMATION); }

bool WindowPrompter::question(const std::string& text) {
  return showBox(text, wxYES_NO | wxICON_QUESTION) == wxYES;
}

bool WindowPrompter::confirmLoss(const std::string& text) {
  if (asksOfLosses != nullptr && !*asksOfLosses) return true;
  const BusyPause pause;
  const FocusKeeper focus;
  wxRichMessageDialog dialog(boxParent(), toWx(text), "Plumetta", wxYES_NO | wxCENTRE | wxICON_WARNING);
  dialog.SetYesNoLabels("Save", "Don't save");
  dialog.ShowCheckBox("Don't ask again");
  ++boxes_;
  const bool goesOn = dialog.ShowModal() == wxID_YES;
  --boxes_;
  if (goesOn && dialog.IsCheckBoxChecked() && asksOfLosses != nullptr) {
    *asksOfLosses = false;
    if (onLossesSilenced) onLossesSilenced();
  }
  return goesOn;
}

bool WindowPrompter::asking() const {
  if (boxes_ > 0) return true;
  return modalDialog() != nullptr;
}

void WindowPrompter::status(const std::string& text) {
  if (onStatus) onStatus(toWx(text));
}

void WindowPrompter::setBusy(bool busy) {
  if (busy) {
    wxBeginBusyCursor();
  } else if (wxIsBusy()) {
    wxEndBusyCursor();
  }
}

WaveProgress WindowPrompter::beginProgress(const std::string& title) {
  if (depth_++ == 0) {
    title_ = toWx(title);
    cancelled_ = false;
    begun_ = Clock::now();
    nextUpdate_ = begun_ + kQuietTime;
    partsDone_ = 0;
    parts_ = 1;
    detail_.clear();
  } else {
    detail_ = toWx(title);
  }
  return {&WindowPrompter::onProgress, this};
}

void WindowPrompter::endProgress() {
  if (--depth_ > 0) return;
  dialog_.reset();
  resumeBusyCursor(pausedBusy_);
  pausedBusy_ = 0;
}

bool WindowPrompter::progressPart(int done, int all) {
  partsDone_ = done;
  parts_ = all;
  return onProgress(0.0f, this);
}

bool WindowPrompter::onProgress(float fractionDone, void* self) {
  auto& prompter = *static_cast<WindowPrompter*>(self);
  if (prompter.cancelled_) return false;
  const auto now = Clock::now();
  return now < prompter.nextUpdate_ || prompter.showProgress(fractionDone);
}

bool WindowPrompter::showProgress(float fractionDone) {
  if (!dialog_) {
    pausedBusy_ = pauseBusyCursor();
    dialog_ = std::make_unique<ProgressDialog>(parent_, title_, begun_);
  }
  if (parts_ > 1) {
    dialog_->setDetail(wxString::Format("%d of %d. ", partsDone_ + 1, parts_) + detail_);
  }
  cancelled_ = !dialog_->update((static_cast<float>(partsDone_) + fractionDone) / static_cast<float>(parts_));
  // Counted from after the drawing, so that a slow display can't eat all the time.
  nextUpdate_ = Clock::now() + kUpdateInterval;
  return !cancelled_;
}

}  // namespace plumetta
