// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdio>
#include <string>
#include <vector>

#include "cli/call.h"
#include "doc/document.h"
#include "platform/terminal.h"
#include "vst/plugin_probe.h"

namespace plumetta {
namespace {

constexpr CliCommand kCommands[] = {
    {"edit", "edit STEP [ARG...] STEP [ARG...] ...", "a chain of steps on documents", runEdit},
    {"info", "info FILE... [--json]", "what files hold", runInfo},
    {"formats", "formats [--json]", "the sound files that can be read and written", runFormats},
    {"stats", "stats FILE [--select FROM TO] [--no-levels] [--out FILE]", "the statistics report of a file",
     runStats},
    {"batch",
     "batch FUNCTION IN OUT [--recurse] [--chain FILE.sor] [--log FILE] [--jobs N] [--shard K/N] | batch "
     "--list | "
     "batch --merge-logs LOG...",
     "one function over every file of a folder; FUNCTION is a number or text of the list. Shard K of N takes "
     "every N-th file; the logs of shards 0, 1 ... merge into the one of the whole batch",
     runBatch},
    {"spectrum",
     "spectrum FILE [--select FROM TO] [--size N] [--window KIND] --out FILE.fft | spectrum --show FILE.fft",
     "saves an averaged spectrum (N 4096, KIND Hanning unless told otherwise), or prints a saved one as JSON",
     runSpectrum},
    {"sonogram", "sonogram FILE [--select FROM TO] [--size N] [--hop N] [--window KIND] --out FILE.csv",
     "saves the spectra along time (size 2048, hop half of it, KIND Hanning unless told otherwise): a line "
     "each "
     "with its middle frame, its channel and the amplitude at each frequency",
     runSonogram},
    {"window", "window KIND N", "the N coefficients of a window; KIND is its index or its name", runWindow},
    {"vst",
     "vst scan FOLDER [--recurse] [--instruments] [--add] [--again] | vst list [--json] | vst info PLUGIN "
     "[--json]",
     "fills the list of plug-ins (--again: also from libraries that were skipped), prints it, asks a plug-in",
     runVst},
    {"devices", "devices [--json]", "the devices for sound and control, numbered", runDevices},
    {"asio", "asio report INDEX FILE",
     "saves what an ASIO driver tells of itself; INDEX as devices numbers them", runAsio},
    {"midi", "midi listen [--device N] [--seconds S]", "prints the remote commands as they arrive", runMidi},
    {"play",
     "play FILE [--select FROM TO] [--loop] [--device N] [--asio] [--rate R] "
     "[--chain FILE.sor]",
     "plays on a device", runPlay},
    {"record", "record FILE.wav --seconds S [--device N] [--rate R] [--bits B]", "records from a device",
     runRecord},
    {"settings", "settings [set SECTION KEY VALUE]", "prints every setting, or changes one", runSettings},
    {"update-check", "update-check",
     "asks the update server for the newest version: newer, same or older, and its number; asks you before "
     "the first "
     "time",
     runUpdateCheck},
};

std::string help() {
  std::string text = "Usage: plumetta-cli [OPTION...] COMMAND [ARG...]\n\nCommands:\n";
  for (const CliCommand& command : kCommands) {
    text += std::string("  ") + command.usage + "\n      " + command.summary + "\n";
  }
  return text +
         "\nOptions:\n"
         "  --home DIR      the program's own folder for this run\n"
         "  --yes, --no     the answer to every question\n"
         "  --keep-going    a refused step prints its message and the chain goes on\n"
         "  --quiet         no progress bar\n"
         "  --help          this page; COMMAND --help tells of one command\n"
         "  --version\n";
}

std::string helpOf(const CliCommand& command) {
  std::string text = std::string("Usage: plumetta-cli ") + command.usage + "\n\n" + command.summary + "\n";
  if (command.run != runEdit) return text;
  return text + "\nPositions and lengths are frames (44100) or times (1.5s, 250ms).\nSteps:\n" + editHelp();
}

// Reads the words before the command's name; the exit status where they already end the call.
std::optional<int> readOptions(WordReader& words, CallOptions& options) {
  while (!words.atEnd() && words.peek().starts_with("--")) {
    const std::string word = words.take();
    if (word == "--help") return print(help()) ? kAllDone : kFileError;
    if (word == "--version") {
      return print(std::string("plumetta-cli ") + kVersion + "\n") ? kAllDone : kFileError;
    }
    if (word == "--yes" || word == "--no") {
      options.answer = word == "--yes";
    } else if (word == "--keep-going") {
      options.keepGoing = true;
    } else if (word == "--quiet") {
      options.quiet = true;
    } else if (word == "--home" && !words.atEnd()) {
      options.home = words.take();
    } else if (word == "--home") {
      return wrongCall("--home: DIR is missing");
    } else {
      return wrongCall("unknown option '" + word + "'");
    }
  }
  return std::nullopt;
}

int run(std::vector<std::string> arguments) {
  WordReader words(std::move(arguments));
  CallOptions options;
  if (const auto status = readOptions(words, options)) return *status;
  if (words.atEnd()) return wrongCall("a command is missing; --help lists them");
  const std::string name = words.take();
  for (const CliCommand& command : kCommands) {
    if (name != command.name) continue;
    if (!words.atEnd() && words.peek() == "--help") return print(helpOf(command)) ? kAllDone : kFileError;
    return command.run(options, words.remaining());
  }
  return wrongCall("unknown command '" + name + "'");
}

}  // namespace

int wrongCall(const std::string& what) {
  std::fprintf(stderr, "plumetta-cli: %s\n", what.c_str());
  return kWrongCall;
}

bool print(const std::string& text) {
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (written && std::fflush(stdout) == 0) return true;
  std::fputs("plumetta-cli: standard output could not be written\n", stderr);
  return false;
}

}  // namespace plumetta

int main(int argc, char** argv) {
  plumetta::setBinaryOutput();
  if (argc > 1 && std::string(argv[1]) == plumetta::kProbeSwitch) {
    return plumetta::runPluginProbe({argv + 2, argv + argc});
  }
  return plumetta::run({argv + 1, argv + argc});
}
