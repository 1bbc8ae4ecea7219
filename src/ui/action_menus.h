// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/accel.h>
#include <wx/frame.h>
#include <wx/menu.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "app/shortcuts.h"

namespace plumetta {

// One thing that a person can choose: menus, the toolbar and the list of shortcuts are all read off it.
struct Action {
  std::string id;
  std::string text;  // with its mnemonic; empty for a separator
  std::string key;   // "" for none
  std::string help;  // for the status line
  std::function<void()> run;
  std::function<bool()> enabled{};                 // none: always
  std::function<bool()> checked{};                 // none: no check mark
  std::function<std::vector<Action>()> entries{};  // of a submenu, asked again by `refill`
  std::vector<Action> actions{};                   // of a submenu that stays as it is
};

inline const Action kSeparator{};

struct MenuPlan {
  std::string title;
  std::vector<Action> actions;
};

// The menu bar of a frame, made from its plan and kept in step with what is possible at the moment.
class ActionMenus {
 public:
  // `mayRun` is asked before any action runs.
  ActionMenus(wxFrame& frame, std::function<bool()> mayRun);

  // Makes the menu bar. Once.
  void build(std::vector<MenuPlan> plan);
  // Another key for an action, beside the one in its menu, as long as no menu shows it.
  void addKey(const std::string& key, const std::string& id);
  // The key of `other`, whichever that is, goes to this action whenever it can be chosen.
  void shareKey(const std::string& other, const std::string& id);
  // Every action that can have a key, with the one that its plan gives it.
  std::vector<ShortcutRow> shortcutRows() const;
  // Other keys in menus and toolbar hints to come.
  void setKeys(const std::vector<ShortcutRow>& rows);
  void refill(const std::string& id);
  // Brings enabled and checked states of menus and toolbar up to date. Cheap when nothing has changed.
  void refresh();

  // As if it had been chosen. False when there is no such action.
  bool choose(const std::string& id);
  int numberOf(const std::string& id) const;
  const Action& action(const std::string& id) const;
  const std::vector<MenuPlan>& plan() const { return plan_; }

 private:
  struct Item {
    Action* action;
    wxMenuItem* item;
    bool enabled = true;
  };

  void append(wxMenu& menu, Action& action);
  void addRows(const MenuPlan& menu, const std::string& before, const std::vector<Action>& actions,
               std::vector<ShortcutRow>& rows) const;
  wxAcceleratorEntry entryOf(const std::string& key, const std::string& id) const;
  // In the order in which they are looked at.
  std::vector<wxAcceleratorEntry> allKeys() const;
  void onMenu(wxCommandEvent& event);
  // Some toolkits leave keys without Ctrl or Alt, and Ctrl+Tab, to the window that has the focus; here every
  // key of an action counts wherever no text is being typed.
  void onCharHook(wxKeyEvent& event);
  void run(const Action& action);

  wxFrame& frame_;
  std::function<bool()> mayRun_;
  std::vector<MenuPlan> plan_;
  std::map<int, Item> items_;
  std::map<std::string, int> numbers_;
  std::vector<std::pair<std::string, std::string>> otherKeys_;   // key and action
  std::vector<std::pair<std::string, std::string>> sharedKeys_;  // the action whose key it is, and action
  std::vector<wxAcceleratorEntry> keys_;
  struct Submenu {
    wxMenu* menu;
    int firstNumber;
    std::vector<Action> entries;
  };
  std::map<std::string, Submenu> submenus_;
  int nextNumber_;
};

// A label without mnemonic and dots, and the same with the key behind it.
std::string plainText(const Action& action);
wxString toolHint(const Action& action);

}  // namespace plumetta
