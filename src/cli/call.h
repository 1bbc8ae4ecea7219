// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/arguments.h"

namespace plumetta {

enum ExitStatus { kAllDone = 0, kRefused = 1, kWrongCall = 2, kFileError = 3 };

// What stands before the command's name.
struct CallOptions {
  std::string home;
  std::optional<bool> answer;
  bool keepGoing = false;
  bool quiet = false;
};

// One command of the command line beside `edit`'s steps.
struct CliCommand {
  const char* name;
  const char* usage;
  const char* summary;
  int (*run)(const CallOptions& options, WordReader words);
};

int runAsio(const CallOptions& options, WordReader words);
int runBatch(const CallOptions& options, WordReader words);
int runEdit(const CallOptions& options, WordReader words);
int runFormats(const CallOptions& options, WordReader words);
int runInfo(const CallOptions& options, WordReader words);
int runSkin(const CallOptions& options, WordReader words);
int runSonogram(const CallOptions& options, WordReader words);
int runSkin(const CallOptions& options, WordReader words);
int runSpectrum(const CallOptions& options, WordReader words);
int runStats(const CallOptions& options, WordReader words);
int runKeys(const CallOptions& options, WordReader words);
int runMidi(const CallOptions& options, WordReader words);
int runSettings(const CallOptions& options, WordReader words);
int runUpdateCheck(const CallOptions& options, WordReader words);
int runWindow(const CallOptions& options, WordReader words);
int runDevices(const CallOptions& options, WordReader words);
int runPlay(const CallOptions& options, WordReader words);
int runVst(const CallOptions& options, WordReader words);
int runRecord(const CallOptions& options, WordReader words);

// The steps of `edit` with their arguments, a line each.
std::string editHelp();

// Says on standard error what is wrong with the call.
int wrongCall(const std::string& what);
// Prints to standard output; false, with a line on standard error, when that can't be written.
bool print(const std::string& text);

}  // namespace plumetta
