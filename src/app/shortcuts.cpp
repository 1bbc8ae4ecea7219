// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/shortcuts.h"

#include <algorithm>
#include <stdexcept>

#include "app/key_press.h"
#include "doc/command.h"
#include "platform/paths.h"
#include "platform/private_profile.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "Keys";
constexpr size_t kLongestQuoted = 40;

// The spelling that counts; empty for no key and for what is none.
std::string spelled(std::string_view text) {
  const auto press = parseKeyPress(text);
  return press ? keyPressText(*press) : std::string();
}

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t") == std::string_view::npos; }

std::vector<std::optional<std::string>> linesOf(const std::string& path,
                                                const std::vector<ShortcutRow>& rows) {
  std::vector<ProfileName> names;
  for (const ShortcutRow& row : rows) names.push_back({kSection, row.id});
  return readProfileStrings(path, names);
}

}  // namespace

Shortcuts::Shortcuts(std::vector<ShortcutRow> rows) : rows_(std::move(rows)) {
  for (ShortcutRow& row : rows_) {
    const std::string key = spelled(row.defaultKey);
    if (key.empty() != row.defaultKey.empty()) throw std::logic_error("no such key: " + row.defaultKey);
    row.defaultKey = key;
  }
  resetAll();
}

ShortcutRow* Shortcuts::row(std::string_view id) {
  const auto found = std::ranges::find_if(rows_, [&](const ShortcutRow& own) { return own.id == id; });
  return found != rows_.end() ? &*found : nullptr;
}

const ShortcutRow* Shortcuts::find(std::string_view id) const {
  return const_cast<Shortcuts*>(this)->row(id);
}

const ShortcutRow* Shortcuts::ownerOf(std::string_view key) const {
  if (key.empty()) return nullptr;
  const auto found = std::ranges::find_if(rows_, [&](const ShortcutRow& own) { return own.key == key; });
  return found != rows_.end() ? &*found : nullptr;
}

std::string Shortcuts::refusal(const ShortcutRow& row, std::string_view text) const {
  if (isBlank(text)) return {};
  const auto press = parseKeyPress(text);
  if (!press) return "\"" + std::string(text.substr(0, kLongestQuoted)) + "\" is no key.";
  return keyPressText(*press) == row.defaultKey ? std::string() : reservedFor(*press);
}

void Shortcuts::set(std::string_view id, std::string_view text) {
  const std::string key = spelled(text);
  for (ShortcutRow& own : rows_) {
    if (!key.empty() && own.key == key) own.key.clear();
  }
  if (ShortcutRow* const wanted = row(id)) wanted->key = key;
}

void Shortcuts::resetAll() {
  for (ShortcutRow& own : rows_) own.key.clear();
  for (ShortcutRow& own : rows_) {
    if (ownerOf(own.defaultKey) == nullptr) own.key = own.defaultKey;
  }
}

std::vector<std::string> Shortcuts::load(const std::string& path) {
  std::vector<std::string> problems;
  const auto lines = linesOf(path, rows_);
  const auto give = [&](ShortcutRow& to, const std::string& key) {
    const ShortcutRow* const owner = ownerOf(key);
    if (owner == nullptr) {
      to.key = key;
      return;
    }
    problems.push_back(key + " belongs to \"" + owner->text + "\"; \"" + to.text + "\" has no key.");
  };
  std::vector<bool> byDefault(rows_.size());
  for (ShortcutRow& own : rows_) own.key.clear();
  for (size_t i = 0; i < rows_.size(); ++i) {
    byDefault[i] = !lines[i];
    if (!lines[i]) continue;
    const std::string problem = refusal(rows_[i], *lines[i]);
    byDefault[i] = !problem.empty();
    if (problem.empty()) {
      give(rows_[i], spelled(*lines[i]));
    } else {
      problems.push_back("The key of \"" + rows_[i].text + "\" can't be taken: " + problem);
    }
  }
  for (size_t i = 0; i < rows_.size(); ++i) {
    if (byDefault[i]) give(rows_[i], rows_[i].defaultKey);
  }
  return problems;
}

bool Shortcuts::save(const std::string& path, bool everyLine) const {
  const auto lines = linesOf(path, rows_);
  std::vector<ProfileEntry> entries;
  for (size_t i = 0; i < rows_.size(); ++i) {
    const ShortcutRow& own = rows_[i];
    // A line that could not be taken stays as it was written.
    const bool taken = lines[i] && refusal(own, *lines[i]).empty();
    if (!everyLine && own.key == own.defaultKey && !taken) continue;
    entries.push_back({{kSection, own.id}, profileTextOf(own.key)});
  }
  return entries.empty() || writeProfileStrings(path, entries);
}

std::string shortcutsPath(const std::string& home) { return joinPath(home, "plumetta.keys"); }

bool isShortcutsFile(const std::string& path) {
  const std::vector<std::string> sections = profileSections(path);
  return std::ranges::any_of(sections,
                             [](const std::string& name) { return sameProfileName(name, kSection); });
}

std::vector<ShortcutRow> commandShortcuts() {
  std::vector<ShortcutRow> rows;
  for (const Command& command : commandTable()) {
    if (*command.menuText == '\0') continue;
    rows.push_back({command.id, "", withoutMnemonic(command.menuText), command.key, ""});
  }
  return rows;
}

std::string withoutMnemonic(std::string_view text) {
  std::string plain;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool doubled = text[i] == '&' && i + 1 < text.size() && text[i + 1] == '&';
    if (text[i] != '&' || doubled) plain += text[i];
    if (doubled) ++i;
  }
  return plain;
}

}  // namespace plumetta
