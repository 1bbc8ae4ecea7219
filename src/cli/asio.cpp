// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli asio report`: what an ASIO driver tells of itself, in a text file.
#include "app/application.h"
#include "cli/call.h"
#include "cli/terminal_prompter.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

int exitStatus(OutputDevice::ReportOutcome outcome) {
  switch (outcome) {
    case OutputDevice::ReportOutcome::complete:
      return kAllDone;
    case OutputDevice::ReportOutcome::driverFailed:
      return kRefused;
    case OutputDevice::ReportOutcome::fileError:
      return kFileError;
  }
  return kRefused;
}

}  // namespace

int runAsio(const CallOptions& options, WordReader words) {
  if (words.atEnd() || words.take() != "report") return wrongCall("asio: only 'report' can follow");
  std::optional<int> driver;
  readNumber(words, "asio report", "INDEX", isDeviceIndex, driver);
  if (words.failed()) return wrongCall(words.error());
  if (words.atEnd()) return wrongCall("asio report: FILE is missing");
  const std::string path = absolutePath(words.take());
  if (!words.atEnd()) return wrongCall("asio report: what is '" + words.take() + "'?");
  TerminalPrompter prompter(options.answer, options.quiet);
  Application app(prompter, nativeFileSystem(), options.home);
  return exitStatus(app.output().writeAsioReport(app.files(), *driver, app.settings().output, path));
}

}  // namespace plumetta
