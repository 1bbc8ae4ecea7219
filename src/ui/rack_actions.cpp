// SPDX-License-Identifier: GPL-3.0-or-later
// The rack in the main window: its menu entries and its switch.
#include "app/crash_recovery.h"
#include "ui/main_frame.h"

namespace plumetta {
namespace {

constexpr int kCopyMilliseconds = 1000;

}  // namespace

std::vector<Action> MainFrame::rackActions() {
  Action window{"rack", "VST rac&k…", "F7", "The chain of plug-ins", [this] { showRack(); }};
  window.checked = [this] { return rackWindow_ != nullptr && rackWindow_->IsShown(); };
  Action through{"rack-on", "Play thro&ugh the VST rack", "Ctrl+F7", "What is played passes the plug-ins",
                 [this] { switchRack(); }};
  through.checked = [this] { return app_.rackOn(); };
  Action apply = groupedActions(Menu::process, {"rack-apply"}).front();
  apply.help = "The plug-ins over the selection, or over the whole file";
  apply.run = [this] {
    if (CPlumettaDoc* doc = tabs_->active()) applyRack(*doc);
  };
  return {window, through, apply};
}

void MainFrame::showRack() {
  if (rackWindow_ == nullptr) {
    rackWindow_ = new CVSTRackDlg(this, app_, profile_, editors_, [this] { return !prompter_.working(); });
    rackWindow_->onSwitched = [this] { switchRack(); };
    rackWindow_->onApply = [this] { menus_.choose("rack-apply"); };
    rackWindow_->onPlayKey = [this] { menus_.choose(sound_.playing() ? "stop" : "play"); };
  } else if (rackWindow_->IsShown()) {
    rackWindow_->Close();
    return;
  }
  rackWindow_->Show();
  rackWindow_->Raise();
}

void MainFrame::switchRack() {
  app_.setRackOn(!app_.rackOn());
  if (!prompter_.working()) app_.keepCopies();
  followSound();
}

void MainFrame::applyRack(CPlumettaDoc& doc) {
  prompter_.status("");
  if (app_.rack().hasActivePlugin()) app_.secureDocuments();
  const CommandOutcome outcome = runCommand(doc, *findCommand("rack-apply"));
  if (outcome != CommandOutcome::done || !app_.settings().plugins.disableAfterApply) return;
  // Else the effect would be heard twice.
  Rack& rack = app_.rack();
  for (int position = 0; position < rack.positionCount(); ++position) {
    if (rack.activeSlotAt(position) >= 0) rack.setMuted(position, true);
  }
}

// Nothing is copied in the middle of a command.
void MainFrame::watchCopies() {
  copyTimer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) {
    if (!prompter_.working()) app_.keepCopies();
  });
  copyTimer_.Start(kCopyMilliseconds);
}

void MainFrame::openLeftCopies() {
  for (CPlumettaDoc* document : offerRecovery(app_)) tabs_->add(*document);
  editors_.titleByName();
  if (!app_.rack().isEmpty()) showRack();
}

}  // namespace plumetta
