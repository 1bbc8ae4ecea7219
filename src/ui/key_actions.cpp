// SPDX-License-Identifier: GPL-3.0-or-later
// The keys of actions: the file that keeps them and the dialog that changes them.
#include "ui/main_frame.h"
#include "ui/shortcuts_dialog.h"

namespace plumetta {

std::vector<std::string> MainFrame::startShortcuts() {
  shortcuts_ = Shortcuts(menus_.shortcutRows());
  std::vector<std::string> problems = shortcuts_.load(shortcutsPath(app_.homeFolder()));
  menus_.setKeys(shortcuts_.rows());
  return problems;
}

void MainFrame::tellKeyProblems() {
  if (keyProblems_.empty()) return;
  const std::string path = shortcutsPath(app_.homeFolder());
  std::string text = path;
  for (const std::string& problem : keyProblems_) text += "\n" + problem;
  keyProblems_.clear();
  prompter_.message(text);
  // What was decided between two actions is decided from now on. What is no key stays as it was written.
  if (!shortcuts_.save(path)) prompter_.message("Unable to write " + path);
}

void MainFrame::editShortcuts() {
  ShortcutsDialog dialog(this, app_, profile_, shortcuts_);
  if (!dialog.ask()) return;
  shortcuts_ = dialog.shortcuts();
  menus_.setKeys(shortcuts_.rows());
  if (GetToolBar() != nullptr) buildToolBar();
  transportBar_->showKeys();
}

}  // namespace plumetta
