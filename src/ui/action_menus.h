// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/accel.h>
#include <wx/frame.h>
#include <wx/menu.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

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
  // Another key for an action, beside the one in its menu. An action that had the key before keeps it for
  // when this one can't be chosen.
  void addKey(const std::string& key, const std::string& id);
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
    const Action* action;
    wxMenuItem* item;
    bool enabled = true;
  };

  void append(wxMenu& menu, const Action& action);
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
  std::vector<wxAcceleratorEntry> keys_;
  struct Submenu {
    wxMenu* menu;
    int firstNumber;
    std::vector<Action> entries;
  };
  std::map<std::string, Submenu> submenus_;
  int nextNumber_;
};

// A label without mnemonic and dots, and its key as people read it.
std::string plainText(const Action& action);

}  // namespace plumetta
