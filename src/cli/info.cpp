// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli info`: what files hold.
#include <cstdio>

#include "cli/call.h"
#include "cli/document_json.h"
#include "cli/terminal_prompter.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

std::string encodingName(const CWave& wave) {
  return std::to_string(wave.bitsPerSample()) + "-bit " +
         (wave.formatTag() == kFormatFloat ? "float" : "PCM");
}

std::string describe(const CWave& wave) {
  const double seconds = static_cast<double>(wave.frames()) / wave.sampleRate();
  char duration[64];
  std::snprintf(duration, sizeof duration, "%d frames, %.3f s", wave.frames(), seconds);
  std::string text = wave.fileName() + "\n";
  text += "  format    " + encodingName(wave) + "\n";
  text += "  channels  " + std::to_string(wave.channels()) + "\n";
  text += "  rate      " + std::to_string(wave.sampleRate()) + " Hz\n";
  text += std::string("  length    ") + duration + "\n";
  text += "  markers   " + std::to_string(wave.markers.count()) + "\n";
  text += "  loops     " + std::to_string(wave.loops.count()) + "\n";
  text += std::string("  envelope  ") + (wave.envelope.active() ? "yes" : "no") + "\n";
  return text;
}

}  // namespace

int runInfo(const CallOptions& options, WordReader words) {
  std::vector<std::string> files;
  bool json = false;
  while (!words.atEnd()) {
    const std::string word = words.take();
    if (word == "--json") {
      json = true;
    } else if (word.starts_with("--")) {
      return wrongCall("info: unknown option '" + word + "'");
    } else {
      files.push_back(absolutePath(word));
    }
  }
  if (files.empty()) return wrongCall("info: FILE is missing");
  TerminalPrompter prompter(options.answer, options.quiet);
  Application app(prompter, nativeFileSystem(), options.home);
  int status = kAllDone;
  for (const std::string& file : files) {
    FileOutcome outcome{};
    CPlumettaDoc* doc = app.openDocument(file, outcome);
    if (doc == nullptr) {
      status = kFileError;
      continue;
    }
    if (!print(json ? documentJson(*doc, app) + "\n" : describe(doc->wave()))) return kFileError;
    app.closeDocument(*doc);
  }
  return status;
}

}  // namespace plumetta
