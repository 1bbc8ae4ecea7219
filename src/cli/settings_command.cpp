// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli settings`: prints every setting, or changes one.
#include "app/application.h"
#include "cli/call.h"
#include "cli/terminal_prompter.h"

namespace plumetta {
namespace {

int changeSetting(Application& app, WordReader& words) {
  const std::string section = words.take();
  const std::string key = words.take();
  const std::string value = words.take();
  switch (setSetting(app.settings(), section, key, value)) {
    case SetResult::done:
      return app.saveSettings() ? kAllDone : kFileError;
    case SetResult::refused:
      app.prompter().message("This value is not accepted for " + key + ": " + value);
      return kRefused;
    case SetResult::unknownKey:
      break;
  }
  return wrongCall("settings: there is no key '" + key + "' in section '" + section + "'");
}

}  // namespace

int runSettings(const CallOptions& options, WordReader words) {
  if (!words.atEnd() && words.take() != "set") return wrongCall("settings: only 'set' can follow");
  const auto rest = words.rest();
  if (words.consumed() > 0 && rest != 3) return wrongCall("settings set: SECTION, KEY and VALUE are wanted");
  TerminalPrompter prompter(options.answer, options.quiet);
  Application app(prompter, nativeFileSystem(), options.home);
  if (rest == 3) return changeSetting(app, words);
  return print(settingsAsText(app.settings())) ? kAllDone : kFileError;
}

}  // namespace plumetta
