// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli sonogram`.
#include "cli/opened_file.h"
#include "cli/spectrum_options.h"
#include "doc/sonogram_file.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

struct SonogramCall {
  std::string file, out;
  SonogramFileSettings settings;
  std::optional<int> hop;
  SelectionOption selection;
};

bool isHop(int frames) { return frames > 0; }

SonogramCall readCall(WordReader& words) {
  SonogramCall call;
  while (!words.atEnd() && !words.failed()) {
    const std::string word = words.take();
    if (word == "--select") {
      call.selection.read(words, "sonogram");
    } else if (word == "--size" && !words.atEnd()) {
      readSpectrumSize(words, "sonogram", call.settings.spectrum.size);
    } else if (word == "--window" && !words.atEnd()) {
      readWindowKind(words, "sonogram", call.settings.spectrum.window);
    } else if (word == "--hop") {
      readNumber(words, "sonogram", word, isHop, call.hop);
    } else if (word == "--out" && !words.atEnd()) {
      call.out = absolutePath(words.take());
    } else {
      readFileWord(words, "sonogram", word, call.file);
    }
  }
  call.settings.hop = call.hop.value_or(call.settings.spectrum.size / 2);
  if (call.file.empty()) words.fail("sonogram: FILE is missing");
  if (call.out.empty()) words.fail("sonogram: --out FILE.csv is missing");
  return call;
}

}  // namespace

int runSonogram(const CallOptions& options, WordReader words) {
  const SonogramCall call = readCall(words);
  if (words.failed()) return wrongCall(words.error());
  OpenedFile opened(options, call.file, call.selection);
  if (opened.doc == nullptr) return kFileError;
  return opened.doc->saveSonogram(call.out, call.settings) == FileOutcome::done ? kAllDone : kFileError;
}

}  // namespace plumetta
