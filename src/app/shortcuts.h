// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace plumetta {

// Something that a person can choose by a key.
struct ShortcutRow {
  std::string id;
  std::string group;       // its menu
  std::string text;        // as people read it
  std::string defaultKey;  // as `keyPressText` spells it; "" for none
  std::string key;         // at present
};

// The keys of all actions, no two of them alike, and the file that keeps what a person has changed. UI
// thread.
class Shortcuts {
 public:
  // In the order of the menus, with their defaults.
  explicit Shortcuts(std::vector<ShortcutRow> rows);

  const std::vector<ShortcutRow>& rows() const { return rows_; }
  // Null when there is none of that id, and when nobody has the key.
  const ShortcutRow* find(std::string_view id) const;
  const ShortcutRow* ownerOf(std::string_view key) const;

  // Why an action can't have what a text asks for, as a sentence; empty when it can, and for no key.
  std::string refusal(const ShortcutRow& row, std::string_view text) const;
  // Gives an action a key that is not refused, "" for none; the one that had it is left without.
  void set(std::string_view id, std::string_view text);
  void resetAll();

  // The defaults, and what a file says of them. What a person has written goes before a default, and of two
  // that want one key the first has it. Returns what could not be taken, a sentence each; a missing file is
  // as good as an empty one.
  std::vector<std::string> load(const std::string& path);
  // What differs from its default and what the file already names, or every line; other lines are kept.
  // False when it can't be written.
  bool save(const std::string& path, bool everyLine = false) const;

 private:
  ShortcutRow* row(std::string_view id);

  std::vector<ShortcutRow> rows_;
};

// "plumetta.keys" in the program's own folder.
std::string shortcutsPath(const std::string& home);
// Whether a file has a section of keys.
bool isShortcutsFile(const std::string& path);
// The rows of the command table.
std::vector<ShortcutRow> commandShortcuts();
// A menu text without its mnemonic.
std::string withoutMnemonic(std::string_view text);

}  // namespace plumetta
