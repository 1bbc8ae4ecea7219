// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the command table in the menus.
#include <algorithm>
#include <stdexcept>

#include "ui/main_frame.h"
#include "ui/parameter_dialog.h"

namespace plumetta {

std::vector<Action> MainFrame::commandActions(Menu menu) {
  std::vector<Action> actions;
  for (const Command& command : commandTable()) {
    if (command.menu == menu && *command.menuText != '\0') actions.push_back(commandAction(command));
  }
  return actions;
}

std::vector<Action> MainFrame::groupedActions(Menu menu, const std::vector<std::string>& ids) {
  const std::vector<Action> all = commandActions(menu);
  std::vector<Action> actions;
  for (const std::string& id : ids) {
    const auto found = std::ranges::find(all, id, &Action::id);
    if (!id.empty() && found == all.end()) throw std::logic_error("no such command in this menu: " + id);
    actions.push_back(id.empty() ? kSeparator : *found);
  }
  return actions;
}

// What a row needs is told when it is chosen; grey are only those of which nothing at all would come.
Action MainFrame::commandAction(const Command& command) {
  const std::string id = command.id;
  const std::string dots = command.parameters.empty() ? "" : "…";
  Action action{id, command.menuText + dots, command.key, "", [this, &command] {
                  if (CPlumettaDoc* doc = tabs_->active()) runWithParameters(*doc, command);
                }};
  action.enabled = [this, id, menu = command.menu] {
    const CPlumettaDoc* doc = tabs_->active();
    if (doc == nullptr) return false;
    if (id == "undo") return doc->journal().canUndo();
    if (id == "redo") return doc->journal().canRedo();
    if (id.starts_with("paste")) return app_.clipboard() != nullptr;
    if (menu == Menu::fade) return doc->view().hasSelection();
    return true;
  };
  return action;
}

void MainFrame::runWithParameters(CPlumettaDoc& doc, const Command& command) {
  prompter_.status("");
  if (command.parameters.empty()) {
    runCommand(doc, command);
    return;
  }
  // A document that the command can't work on is told so before anything is asked.
  CommandCall asIs(doc, command, fallbackArguments(command));
  const auto refusal = command.check != nullptr ? command.check(asIs) : std::nullopt;
  if (refusal && !refusal->ofValues) {
    runCommand(doc, command);
    return;
  }
  const ViewState opened = doc.view();
  auto arguments = askParameters(this, doc, command, profile_);
  if (!arguments) return;
  // The range is the one that the dialog was opened for.
  doc.setSelectionExactly(opened.selectionStart, opened.selectionEnd);
  runCommand(doc, command, std::move(*arguments));
}

MenuPlan MainFrame::processMenu() {
  Action fade{"fade", "&Fade", "", "Let the selection come or go", nullptr};
  fade.actions = groupedActions(Menu::fade, {"quick-0", "quick-2", "quick-4", "quick-6", "quick-8", "",
                                             "quick-1", "quick-3", "quick-5", "quick-7", "quick-9"});
  Action normalize{"normalize-menu", "&Normalize", "", "Bring the loudest sample to a level", nullptr};
  normalize.actions = groupedActions(
      Menu::normalize, {"normalize", "", "quick-14", "quick-15", "quick-16", "quick-17", "quick-18"});
  Action generate{"generate", "&Generate", "", "Write test signals", nullptr};
  generate.actions = groupedActions(
      Menu::generate, {"synthesis", "", "quick-28", "quick-29", "", "quick-30", "quick-31", "quick-32"});
  Action filter{"filter", "Fi&lter", "", "Let some frequencies through and others not", nullptr};
  filter.actions = groupedActions(Menu::filter, {"fir", "", "chebyshev", "band", "rc", "", "moving-average"});
  Action pitch{"pitch-menu", "Rate and &pitch", "", "Change the sample rate or the pitch", nullptr};
  pitch.actions = groupedActions(Menu::pitch, {"resample", "", "pitch", "pitch-fft"});
  MenuPlan menu{"&Process", {fade, normalize, filter, pitch, generate, kSeparator}};
  // Loudness, clipping, waveform, channels, silence and storage.
  for (const Action& action : groupedActions(
           Menu::process, {"volume",          "quick-20", "quick-21", "quick-10", "",         "truncate",
                           "quick-22",        "quick-23", "",         "quick-11", "quick-12", "quick-13",
                           "quick-24",        "",         "quick-25", "quick-19", "",         "auto-trim",
                           "silence-remover", "gapper",   "",         "bit-depth"})) {
    menu.actions.push_back(action);
  }
  menu.actions.push_back(kSeparator);
  for (const Action& action : rackActions()) menu.actions.push_back(action);
  return menu;
}

MenuPlan MainFrame::channelMenu() {
  MenuPlan menu{"&Channel", groupedActions(Menu::channel, {"channel-0", "channel-1"})};
  Action keep{"keep-channel", "&Keep one channel", "", "Throw every other channel away", nullptr};
  keep.actions = groupedActions(Menu::channel, {"channel-2", "channel-3", "channel-4", "channel-5",
                                                "channel-6", "channel-7", "channel-8", "channel-9"});
  menu.actions.insert(menu.actions.end(), {keep, kSeparator});
  for (Action action : groupedActions(Menu::channel, {"channel-10", "", "channel-11", "channel-13",
                                                      "channel-14", "channel-15", "channel-12", ""})) {
    // The only channel can't be deleted.
    if (action.id == "channel-12") {
      action.enabled = [this] {
        return tabs_->active() != nullptr && tabs_->active()->wave().channels() > 1;
      };
    }
    menu.actions.push_back(action);
  }
  Action all = documentAction("all-channels", "All channels acti&ve", "", "Edit every channel",
                              [](CPlumettaDoc& doc) { doc.setActive(ActiveOperation::all, 0); });
  all.enabled = [this] { return tabs_->active() != nullptr && !tabs_->active()->wave().allActive(); };
  menu.actions.push_back(all);
  return menu;
}

}  // namespace plumetta
