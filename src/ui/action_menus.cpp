// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/action_menus.h"

#include <wx/textentry.h>
#include <wx/toolbar.h>

#include <algorithm>
#include <stdexcept>

#include "ui/text.h"

namespace plumetta {
namespace {

// Numbers kept free for the entries of each submenu; more entries than that are not shown.
constexpr int kSubmenuRoom = 100;

wxString labelOf(const Action& action) {
  return toWx(action.key.empty() ? action.text : action.text + "\t" + action.key);
}

int flagsOf(const wxKeyEvent& event) {
  return (event.ControlDown() ? wxACCEL_CTRL : 0) | (event.AltDown() ? wxACCEL_ALT : 0) |
         (event.ShiftDown() ? wxACCEL_SHIFT : 0);
}

}  // namespace

std::string plainText(const Action& action) {
  std::string text = fromWx(wxMenuItem::GetLabelText(toWx(action.text)));
  constexpr std::string_view kDots = "…";
  if (text.ends_with(kDots)) text.resize(text.size() - kDots.size());
  return text;
}

wxString toolHint(const Action& action) {
  return toWx(plainText(action) + (action.key.empty() ? "" : " (" + action.key + ")"));
}

ActionMenus::ActionMenus(wxFrame& frame, std::function<bool()> mayRun)
    : frame_(frame), mayRun_(std::move(mayRun)), nextNumber_(wxID_HIGHEST + 1) {
  frame_.Bind(wxEVT_MENU, &ActionMenus::onMenu, this);
  frame_.Bind(wxEVT_CHAR_HOOK, &ActionMenus::onCharHook, this);
}

void ActionMenus::build(std::vector<MenuPlan> plan) {
  plan_ = std::move(plan);
  auto* bar = new wxMenuBar;
  for (MenuPlan& one : plan_) {
    auto* menu = new wxMenu;
    for (Action& action : one.actions) append(*menu, action);
    bar->Append(menu, toWx(one.title));
  }
  frame_.SetMenuBar(bar);
  keys_ = allKeys();
  refresh();
}

void ActionMenus::append(wxMenu& menu, Action& action) {
  if (action.text.empty()) {
    menu.AppendSeparator();
    return;
  }
  const int number = nextNumber_++;
  numbers_[action.id] = number;
  if (!action.actions.empty()) {
    auto* submenu = new wxMenu;
    for (Action& own : action.actions) append(*submenu, own);
    items_[number] = {&action, menu.AppendSubMenu(submenu, toWx(action.text), toWx(action.help))};
    return;
  }
  if (action.entries) {
    auto* submenu = new wxMenu;
    items_[number] = {&action, menu.AppendSubMenu(submenu, toWx(action.text), toWx(action.help))};
    submenus_[action.id] = {submenu, nextNumber_, {}};
    nextNumber_ += kSubmenuRoom;
    refill(action.id);
    return;
  }
  const auto kind = action.checked ? wxITEM_CHECK : wxITEM_NORMAL;
  items_[number] = {&action, menu.Append(number, labelOf(action), toWx(action.help), kind)};
}

// ---- Keys -----------------------------------------------------------------------------------------------

void ActionMenus::addKey(const std::string& key, const std::string& id) {
  otherKeys_.emplace_back(key, id);
  keys_ = allKeys();
}

void ActionMenus::shareKey(const std::string& other, const std::string& id) {
  sharedKeys_.emplace_back(other, id);
  keys_ = allKeys();
}

wxAcceleratorEntry ActionMenus::entryOf(const std::string& key, const std::string& id) const {
  wxAcceleratorEntry entry;
  if (!entry.FromString(toWx(key))) throw std::logic_error("no such key: " + key);
  entry.Set(entry.GetFlags(), entry.GetKeyCode(), numberOf(id));
  return entry;
}

std::vector<wxAcceleratorEntry> ActionMenus::allKeys() const {
  std::vector<wxAcceleratorEntry> keys;
  for (const auto& [other, id] : sharedKeys_) {
    if (const std::string& key = action(other).key; !key.empty()) keys.push_back(entryOf(key, id));
  }
  for (const auto& [number, item] : items_) {
    if (!item.action->key.empty()) keys.push_back(entryOf(item.action->key, item.action->id));
  }
  for (const auto& [key, id] : otherKeys_) {
    const wxAcceleratorEntry entry = entryOf(key, id);
    const auto same = [&](const wxAcceleratorEntry& own) {
      return own.GetFlags() == entry.GetFlags() && own.GetKeyCode() == entry.GetKeyCode();
    };
    if (std::ranges::none_of(keys, same)) keys.push_back(entry);
  }
  return keys;
}

void ActionMenus::addRows(const MenuPlan& menu, const std::string& before, const std::vector<Action>& actions,
                          std::vector<ShortcutRow>& rows) const {
  for (const Action& action : actions) {
    const std::string text = before + plainText(action);
    if (!action.actions.empty()) addRows(menu, text + ": ", action.actions, rows);
    if (action.run) rows.push_back({action.id, withoutMnemonic(menu.title), text, action.key, ""});
  }
}

std::vector<ShortcutRow> ActionMenus::shortcutRows() const {
  std::vector<ShortcutRow> rows;
  for (const MenuPlan& menu : plan_) addRows(menu, "", menu.actions, rows);
  return rows;
}

void ActionMenus::setKeys(const std::vector<ShortcutRow>& rows) {
  // Without the old ones first: some toolkits mind two items with one key.
  for (const ShortcutRow& row : rows) {
    Item& item = items_.at(numberOf(row.id));
    if (item.action->key == row.key) continue;
    item.action->key.clear();
    item.item->SetItemLabel(labelOf(*item.action));
  }
  for (const ShortcutRow& row : rows) {
    Item& item = items_.at(numberOf(row.id));
    if (item.action->key == row.key) continue;
    item.action->key = row.key;
    item.item->SetItemLabel(labelOf(*item.action));
  }
  keys_ = allKeys();
}

// ---- Entries and states ---------------------------------------------------------------------------------

void ActionMenus::refill(const std::string& id) {
  Submenu& submenu = submenus_.at(id);
  while (submenu.menu->GetMenuItemCount() > 0) submenu.menu->Destroy(submenu.menu->FindItemByPosition(0));
  submenu.entries = action(id).entries();
  if (submenu.entries.size() > kSubmenuRoom) submenu.entries.resize(kSubmenuRoom);
  int number = submenu.firstNumber;
  for (const Action& entry : submenu.entries) {
    if (entry.text.empty()) {
      submenu.menu->AppendSeparator();
      ++number;
      continue;
    }
    const auto kind = entry.checked ? wxITEM_CHECK : wxITEM_NORMAL;
    wxMenuItem* item = submenu.menu->Append(number++, labelOf(entry), toWx(entry.help), kind);
    if (entry.checked) item->Check(entry.checked());
  }
}

void ActionMenus::refresh() {
  for (auto& [number, item] : items_) {
    const bool enabled = !item.action->enabled || item.action->enabled();
    if (enabled != item.enabled) {
      item.enabled = enabled;
      item.item->Enable(enabled);
      if (wxToolBar* tools = frame_.GetToolBar()) tools->EnableTool(number, enabled);
    }
    // The toolkit ticks an item by itself when it is chosen, so the item is asked rather than remembered.
    if (item.action->checked && item.item->IsChecked() != item.action->checked()) {
      item.item->Check(item.action->checked());
    }
  }
}

bool ActionMenus::choose(const std::string& id) {
  const auto number = numbers_.find(id);
  if (number == numbers_.end()) return false;
  run(*items_.at(number->second).action);
  return true;
}

int ActionMenus::numberOf(const std::string& id) const { return numbers_.at(id); }

const Action& ActionMenus::action(const std::string& id) const { return *items_.at(numberOf(id)).action; }

void ActionMenus::onMenu(wxCommandEvent& event) {
  if (const auto found = items_.find(event.GetId()); found != items_.end()) {
    run(*found->second.action);
    return;
  }
  for (const auto& [id, submenu] : submenus_) {
    const int index = event.GetId() - submenu.firstNumber;
    if (index < 0 || index >= static_cast<int>(submenu.entries.size())) continue;
    // A copy, for running may refill the submenu.
    const Action entry = submenu.entries[static_cast<size_t>(index)];
    run(entry);
    return;
  }
  event.Skip();
}

void ActionMenus::onCharHook(wxKeyEvent& event) {
  const bool typing = dynamic_cast<wxTextEntry*>(wxWindow::FindFocus()) != nullptr;
  for (const wxAcceleratorEntry& key : keys_) {
    if (typing || event.GetKeyCode() != key.GetKeyCode() || flagsOf(event) != key.GetFlags()) continue;
    const Action& action = *items_.at(key.GetCommand()).action;
    if (action.enabled && !action.enabled()) continue;
    run(action);
    return;
  }
  event.Skip();
}

void ActionMenus::run(const Action& action) {
  // Keys arrive before the menus have caught up with the last change.
  if (mayRun_() && action.run && (!action.enabled || action.enabled())) action.run();
  refresh();
}

}  // namespace plumetta
