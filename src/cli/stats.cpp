// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli stats`: the statistics report of a file.
#include "app/application.h"
#include "cli/call.h"
#include "cli/terminal_prompter.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

struct StatsCall {
  std::string file;
  std::string out;
  bool levels = true;
  std::optional<FrameOrTime> from, to;
};

void readBound(WordReader& words, std::optional<FrameOrTime>& bound) {
  if (!words.atEnd()) bound = readFrame(words.take());
  if (!bound) words.fail("stats: --select wants FROM and TO");
}

StatsCall readCall(WordReader& words) {
  StatsCall call;
  while (!words.atEnd() && !words.failed()) {
    const std::string word = words.take();
    if (word == "--no-levels") {
      call.levels = false;
    } else if (word == "--select") {
      readBound(words, call.from);
      readBound(words, call.to);
    } else if (word == "--out" && !words.atEnd()) {
      call.out = absolutePath(words.take());
    } else if (call.file.empty() && !word.starts_with("--")) {
      call.file = absolutePath(word);
    } else {
      words.fail("stats: what is '" + word + "'?");
    }
  }
  if (call.file.empty()) words.fail("stats: FILE is missing");
  return call;
}

}  // namespace

int runStats(const CallOptions& options, WordReader words) {
  const StatsCall call = readCall(words);
  if (words.failed()) return wrongCall(words.error());
  TerminalPrompter prompter(options.answer, options.quiet);
  Application app(prompter, nativeFileSystem(), options.home);
  FileOutcome outcome{};
  CPlumettaDoc* doc = app.openDocument(call.file, outcome);
  if (doc == nullptr) return kFileError;
  const uint32_t rate = doc->wave().sampleRate();
  if (call.from) doc->select(call.from->frames(rate), call.to->frames(rate));
  if (call.out.empty()) return print(doc->statistics(call.levels)) ? kAllDone : kFileError;
  return doc->saveStatistics(call.out, call.levels) == FileOutcome::done ? kAllDone : kFileError;
}

}  // namespace plumetta
