// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli stats`: the statistics report of a file.
#include "cli/opened_file.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

struct StatsCall {
  std::string file;
  std::string out;
  bool levels = true;
  SelectionOption selection;
};

StatsCall readCall(WordReader& words) {
  StatsCall call;
  while (!words.atEnd() && !words.failed()) {
    const std::string word = words.take();
    if (word == "--no-levels") {
      call.levels = false;
    } else if (word == "--select") {
      call.selection.read(words, "stats");
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
  OpenedFile opened(options, call.file, call.selection);
  if (opened.doc == nullptr) return kFileError;
  if (call.out.empty()) return print(opened.doc->statistics(call.levels)) ? kAllDone : kFileError;
  return opened.doc->saveStatistics(call.out, call.levels) == FileOutcome::done ? kAllDone : kFileError;
}

}  // namespace plumetta
