// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/shortcuts_dialog.h"

#include <wx/accel.h>
#include <wx/button.h>
#include <wx/filedlg.h>
#include <wx/settings.h>
#include <wx/sizer.h>

#include <algorithm>

#include "app/key_press.h"
#include "platform/paths.h"
#include "platform/private_profile.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr int kGap = 8;
constexpr const char* kProfileSection = "Keys";
constexpr const char* kFolderKey = "Folder";
constexpr const char* kFilter = "Shortcuts (*.keys)|*.keys|All files|*";
constexpr const char* kQuietHint = "Double click, or Enter: another key. In bold: not the default one.";

enum Column { kAction, kMenu, kKey };

bool isHeldDown(int code) {
  constexpr int kHeld[] = {WXK_SHIFT,        WXK_CONTROL,       WXK_ALT,     WXK_CAPITAL,
                           WXK_WINDOWS_LEFT, WXK_WINDOWS_RIGHT, WXK_NUMLOCK, WXK_NONE};
  return std::ranges::find(kHeld, code) != std::end(kHeld);
}

// The text of a key press, which may be one that no action can have; "" for keys without any text.
std::string textOf(const wxKeyEvent& event) {
  const int flags = (event.ControlDown() ? wxACCEL_CTRL : 0) | (event.AltDown() ? wxACCEL_ALT : 0) |
                    (event.ShiftDown() ? wxACCEL_SHIFT : 0);
  return fromWx(wxAcceleratorEntry(flags, event.GetKeyCode()).ToRawString());
}

bool holds(const std::string& text, const wxString& sought) { return toWx(text).Lower().Contains(sought); }

}  // namespace

ShortcutsDialog::ShortcutsDialog(wxWindow* parent, Application& app, WindowProfile& profile,
                                 const Shortcuts& shortcuts)
    : wxDialog(parent, wxID_ANY, "Keyboard shortcuts", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      app_(app),
      profile_(profile),
      shortcuts_(shortcuts) {
  filter_ = new wxSearchCtrl(this, wxID_ANY);
  filter_->SetDescriptiveText("Action, menu or key");
  filter_->ShowCancelButton(true);
  makeList();
  hint_ = new wxStaticText(this, wxID_ANY, kQuietHint, wxDefaultPosition, wxDefaultSize, wxST_NO_AUTORESIZE);
  auto* all = new wxBoxSizer(wxVERTICAL);
  const auto add = [&](auto* part, int share) {
    all->Add(part, share, wxEXPAND | wxLEFT | wxRIGHT | wxTOP, FromDIP(2 * kGap));
  };
  add(filter_, 0);
  add(list_, 1);
  add(hint_, 0);
  add(makeKeyButtons(), 0);
  add(makeButtons(), 0);
  all->AddSpacer(FromDIP(2 * kGap));
  SetSizerAndFit(all);
  bindEvents();
  showRows();
  filter_->SetFocus();
}

void ShortcutsDialog::makeList() {
  list_ = new wxListView(this, wxID_ANY, wxDefaultPosition, FromDIP(wxSize(580, 380)),
                         wxLC_REPORT | wxLC_SINGLE_SEL);
  list_->AppendColumn("Action", wxLIST_FORMAT_LEFT, FromDIP(300));
  list_->AppendColumn("Menu", wxLIST_FORMAT_LEFT, FromDIP(100));
  list_->AppendColumn("Key", wxLIST_FORMAT_LEFT, FromDIP(150));
}

wxSizer* ShortcutsDialog::makeKeyButtons() {
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  const auto add = [&](const char* label, auto onChosen) {
    auto* button = new wxButton(this, wxID_ANY, label);
    button->Bind(wxEVT_BUTTON, [onChosen](wxCommandEvent&) { onChosen(); });
    row->Add(button, 0, wxRIGHT, FromDIP(kGap));
    return button;
  };
  change_ = add("&New key…", [this] { startPress(); });
  none_ = add("N&o key", [this] { give(""); });
  reset_ = add("&Default key", [this] {
    if (const ShortcutRow* action = selected()) give(action->defaultKey);
  });
  return row;
}

wxSizer* ShortcutsDialog::makeButtons() {
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  const auto add = [&](const char* label, void (ShortcutsDialog::*onChosen)()) {
    auto* button = new wxButton(this, wxID_ANY, label);
    button->Bind(wxEVT_BUTTON, [this, onChosen](wxCommandEvent&) { (this->*onChosen)(); });
    row->Add(button, 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap));
  };
  add("Reset &all", &ShortcutsDialog::resetAll);
  add("&Import…", &ShortcutsDialog::importFile);
  add("&Export…", &ShortcutsDialog::exportFile);
  row->AddStretchSpacer();
  row->Add(CreateButtonSizer(wxOK | wxCANCEL), 0, wxALIGN_CENTRE_VERTICAL | wxLEFT, FromDIP(2 * kGap));
  return row;
}

void ShortcutsDialog::bindEvents() {
  filter_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { showRows(); });
  list_->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent&) { showSelected(); });
  list_->Bind(wxEVT_LIST_ITEM_DESELECTED, [this](wxListEvent&) { showSelected(); });
  list_->Bind(wxEVT_LIST_ITEM_ACTIVATED, [this](wxListEvent&) { startPress(); });
  Bind(wxEVT_CHAR_HOOK, &ShortcutsDialog::onCharHook, this);
}

bool ShortcutsDialog::ask() {
  const std::string path = shortcutsPath(app_.homeFolder());
  while (ShowModal() == wxID_OK) {
    if (!app_.files().makeFolders(app_.homeFolder()) && shortcuts_.save(path)) return true;
    app_.prompter().message("Unable to write " + path);
  }
  return false;
}

// ---- The list -------------------------------------------------------------------------------------------

void ShortcutsDialog::showRows() {
  const ShortcutRow* const kept = selected();
  const std::string keptId = kept != nullptr ? kept->id : "";
  const wxString sought = filter_->GetValue().Trim().Trim(false).Lower();
  shown_.clear();
  list_->Freeze();
  list_->DeleteAllItems();
  for (const ShortcutRow& row : shortcuts_.rows()) {
    if (!holds(row.text, sought) && !holds(row.group, sought) && !holds(row.key, sought)) continue;
    const long line = list_->InsertItem(list_->GetItemCount(), toWx(row.text));
    list_->SetItem(line, kMenu, toWx(row.group));
    list_->SetItem(line, kKey, toWx(row.key));
    if (row.key != row.defaultKey) list_->SetItemFont(line, list_->GetFont().Bold());
    shown_.push_back(row.id);
    if (row.id == keptId) list_->Select(line);
  }
  if (list_->GetFirstSelected() < 0 && !shown_.empty()) list_->Select(0);
  if (const long line = list_->GetFirstSelected(); line >= 0) list_->Focus(line);
  list_->Thaw();
  showSelected();
}

const ShortcutRow* ShortcutsDialog::selected() const {
  const long line = list_->GetFirstSelected();
  return line >= 0 && static_cast<size_t>(line) < shown_.size()
             ? shortcuts_.find(shown_[static_cast<size_t>(line)])
             : nullptr;
}

void ShortcutsDialog::showSelected() {
  endPress();
  const ShortcutRow* const row = selected();
  change_->Enable(row != nullptr);
  none_->Enable(row != nullptr && !row->key.empty());
  reset_->Enable(row != nullptr && row->key != row->defaultKey);
}

// ---- A new key ------------------------------------------------------------------------------------------

void ShortcutsDialog::startPress() {
  const ShortcutRow* const row = selected();
  if (row == nullptr) return;
  list_->SetFocus();
  pressing_ = true;
  hint_->SetLabelText("Press the new key for \"" + toWx(row->text) + "\" now; Esc leaves the old one.");
  hint_->SetFont(GetFont().Bold());
}

void ShortcutsDialog::endPress() {
  if (!pressing_) return;
  pressing_ = false;
  hint_->SetFont(GetFont());
  hint_->SetLabelText(kQuietHint);
}

void ShortcutsDialog::onCharHook(wxKeyEvent& event) {
  const int code = event.GetKeyCode();
  if (!pressing_) {
    // The search field gives keys that move to the list that it searches.
    const bool down = code == WXK_DOWN && wxWindow::FindFocus() != list_ && list_->GetItemCount() > 0;
    down ? list_->SetFocus() : event.Skip();
    return;
  }
  if (isHeldDown(code)) return;
  endPress();
  if (code == WXK_ESCAPE && !event.HasAnyModifiers()) return;
  const std::string text = textOf(event);
  // Not from inside the key's own event: a question may come up.
  CallAfter([this, text] { text.empty() ? app_.prompter().message("This key can't be used.") : give(text); });
}

void ShortcutsDialog::give(const std::string& key) {
  const ShortcutRow* const row = selected();
  if (row == nullptr) return;
  if (const std::string problem = shortcuts_.refusal(*row, key); !problem.empty()) {
    app_.prompter().message(problem);
    return;
  }
  const auto press = parseKeyPress(key);
  const ShortcutRow* const owner = press ? shortcuts_.ownerOf(keyPressText(*press)) : nullptr;
  if (owner != nullptr && owner != row &&
      !app_.prompter().question(keyPressText(*press) + " belongs to \"" + owner->text + "\" (" +
                                owner->group + ").\nTake it from there for \"" + row->text + "\"?")) {
    return;
  }
  shortcuts_.set(row->id, key);
  showRows();
}

// ---- All of them ----------------------------------------------------------------------------------------

void ShortcutsDialog::resetAll() {
  if (!app_.prompter().question("Give every action its default key again?")) return;
  shortcuts_.resetAll();
  showRows();
}

void ShortcutsDialog::importFile() {
  wxFileDialog dialog(this, "Import shortcuts", toWx(profile_.text(kProfileSection, kFolderKey, "")),
                      wxString(), kFilter, wxFD_OPEN | wxFD_FILE_MUST_EXIST);
  if (dialog.ShowModal() != wxID_OK) return;
  const std::string path = fromWx(dialog.GetPath());
  profile_.setText(kProfileSection, kFolderKey, folderOf(path));
  if (!isShortcutsFile(path)) {
    app_.prompter().message(path + " has no section [Keys].");
    return;
  }
  std::string text;
  for (const std::string& problem : shortcuts_.load(path)) text += "\n" + problem;
  showRows();
  if (!text.empty()) app_.prompter().message(path + text);
}

void ShortcutsDialog::exportFile() {
  wxFileDialog dialog(this, "Export shortcuts", toWx(profile_.text(kProfileSection, kFolderKey, "")),
                      "My shortcuts.keys", kFilter, wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
  if (dialog.ShowModal() != wxID_OK) return;
  const std::string path = fromWx(dialog.GetPath());
  profile_.setText(kProfileSection, kFolderKey, folderOf(path));
  if (!shortcuts_.save(path, true)) app_.prompter().message("Unable to write " + path);
}

}  // namespace plumetta
