// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/dialog.h>
#include <wx/listctrl.h>
#include <wx/srchctrl.h>
#include <wx/stattext.h>

#include <vector>

#include "app/application.h"
#include "app/shortcuts.h"
#include "ui/window_profile.h"

namespace plumetta {

// Lists every action with its key, finds some by what is typed, and takes a new key by having it pressed. OK
// stores the keys in their file.
class ShortcutsDialog : public wxDialog {
 public:
  ShortcutsDialog(wxWindow* parent, Application& app, WindowProfile& profile, const Shortcuts& shortcuts);

  // True when OK was chosen and the keys are stored.
  bool ask();
  const Shortcuts& shortcuts() const { return shortcuts_; }

 private:
  void makeList();
  wxSizer* makeKeyButtons();
  wxSizer* makeButtons();
  void bindEvents();
  // The actions that hold what was typed in text, menu or key.
  void showRows();
  void showSelected();
  // Null when no row is selected.
  const ShortcutRow* selected() const;

  void startPress();
  void endPress();
  void onCharHook(wxKeyEvent& event);
  // Gives the selected action a key, "" for none, asking when another one has it.
  void give(const std::string& key);
  void resetAll();
  void importFile();
  void exportFile();

  Application& app_;
  WindowProfile& profile_;
  Shortcuts shortcuts_;
  std::vector<std::string> shown_;  // ids of the rows
  bool pressing_ = false;           // the next key is meant for the selected action
  wxSearchCtrl* filter_;
  wxListView* list_;
  wxStaticText* hint_;
  wxButton* change_ = nullptr;
  wxButton* none_ = nullptr;
  wxButton* reset_ = nullptr;
};

}  // namespace plumetta
