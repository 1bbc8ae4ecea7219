// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli update-check`: whether there is a newer version.
#include "app/updates.h"
#include "cli/call.h"
#include "cli/terminal_prompter.h"

namespace plumetta {
namespace {

const char* nameOf(UpdateState state) {
  switch (state) {
    case UpdateState::newer:
      return "newer";
    case UpdateState::same:
      return "same";
    case UpdateState::older:
      return "older";
    case UpdateState::unknown:
      break;
  }
  return "unknown";
}

}  // namespace

int runUpdateCheck(const CallOptions& options, WordReader words) {
  if (!words.atEnd()) return wrongCall("update-check: nothing can follow");
  TerminalPrompter prompter(options.answer, options.quiet);
  Application app(prompter, nativeFileSystem(), options.home);
  const auto check = askForUpdates(app);
  if (check == nullptr) return kRefused;
  const UpdateAnswer answer = check->answer();
  if (answer.state == UpdateState::unknown) {
    prompter.message(updateNews(answer));
    return kFileError;
  }
  return print(nameOf(answer.state) + std::string(" ") + answer.version + "\n") ? kAllDone : kFileError;
}

}  // namespace plumetta
