// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli keys`: the keys of the commands, as "plumetta.keys" has them. The window has actions besides.
#include "app/key_press.h"
#include "app/shortcuts.h"
#include "cli/call.h"
#include "cli/terminal_prompter.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

std::string linesOf(const Shortcuts& shortcuts) {
  std::string text;
  for (const ShortcutRow& row : shortcuts.rows()) {
    text += row.id + "\t" + row.text + "\t" + row.defaultKey + "\t" + row.key + "\n";
  }
  return text;
}

// The keys in a file, and what a call does to them.
class KeysCall {
 public:
  explicit KeysCall(const CallOptions& options)
      : prompter_(options.answer, options.quiet),
        home_(programFolder(options.home)),
        path_(shortcutsPath(home_)) {
    for (const std::string& problem : shortcuts_.load(path_)) prompter_.message(problem);
  }

  int list() const { return print(linesOf(shortcuts_)) ? kAllDone : kFileError; }

  int set(const std::string& id, const std::string& key) {
    const ShortcutRow* const row = shortcuts_.find(id);
    if (row == nullptr) return unknown(id);
    if (const std::string problem = shortcuts_.refusal(*row, key); !problem.empty()) {
      prompter_.message(problem);
      return kRefused;
    }
    const auto press = parseKeyPress(key);
    const ShortcutRow* const owner = press ? shortcuts_.ownerOf(keyPressText(*press)) : nullptr;
    if (owner != nullptr && owner != row &&
        !prompter_.question(keyPressText(*press) + " belongs to \"" + owner->text +
                            "\". Take it from there?")) {
      return kRefused;
    }
    shortcuts_.set(id, key);
    return store();
  }

  int reset(const std::string& id) {
    const ShortcutRow* const row = shortcuts_.find(id);
    return row != nullptr ? set(id, row->defaultKey) : unknown(id);
  }

  int resetAll() {
    shortcuts_.resetAll();
    return store();
  }

 private:
  static int unknown(const std::string& id) {
    return wrongCall("keys: there is no command '" + id + "'; what only the window does has its keys there");
  }

  int store() {
    if (!nativeFileSystem().makeFolders(home_) && shortcuts_.save(path_)) return kAllDone;
    prompter_.message("Unable to write " + path_);
    return kFileError;
  }

  TerminalPrompter prompter_;
  std::string home_, path_;
  Shortcuts shortcuts_{commandShortcuts()};
};

}  // namespace

int runKeys(const CallOptions& options, WordReader words) {
  if (words.atEnd()) return KeysCall(options).list();
  const std::string what = words.take();
  const size_t rest = words.rest();
  if (what == "set" && rest == 2) {
    const std::string id = words.take();
    return KeysCall(options).set(id, words.take());
  }
  if (what == "reset" && rest == 0) return KeysCall(options).resetAll();
  if (what == "reset" && rest == 1) return KeysCall(options).reset(words.take());
  return wrongCall("keys: 'set ID KEY', 'reset' or 'reset ID' can follow");
}

}  // namespace plumetta
