// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli spectrum` and `plumetta-cli window`.
#include <charconv>

#include "cli/json.h"
#include "cli/opened_file.h"
#include "cli/spectrum_options.h"
#include "doc/spectrum_file.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

// Far more than any spectrum or filter uses; they all stand in memory.
constexpr int64_t kMostCoefficients = int64_t{1} << 24;

struct SpectrumCall {
  std::string file, out, show;
  SpectrumSettings settings;
  SelectionOption selection;
};

SpectrumCall readCall(WordReader& words) {
  SpectrumCall call;
  while (!words.atEnd() && !words.failed()) {
    const std::string word = words.take();
    if (word == "--select") {
      call.selection.read(words, "spectrum");
    } else if (word == "--size" && !words.atEnd()) {
      readSpectrumSize(words, "spectrum", call.settings.size);
    } else if (word == "--window" && !words.atEnd()) {
      readWindowKind(words, "spectrum", call.settings.window);
    } else if (word == "--out" && !words.atEnd()) {
      call.out = absolutePath(words.take());
    } else if (word == "--show" && !words.atEnd()) {
      call.show = absolutePath(words.take());
    } else {
      readFileWord(words, "spectrum", word, call.file);
    }
  }
  if (call.show.empty() && call.file.empty()) words.fail("spectrum: FILE is missing");
  if (call.show.empty() && call.out.empty()) words.fail("spectrum: --out FILE.fft is missing");
  if (!call.show.empty() && !(call.file.empty() && call.out.empty())) {
    words.fail("spectrum: --show stands by itself");
  }
  return call;
}

std::string recordJson(const SpectrumRecord& record) {
  JsonWriter json;
  json.beginObject().key("channels").value(record.channels).key("number").value(record.lines);
  json.key("fe").value(record.sampleRate).key("freqstart").value(record.startHz);
  json.key("freqstop").value(record.stopHz).key("values").beginArray();
  for (int32_t line = 0; line < record.lines; ++line) {
    json.beginArray();
    for (int32_t channel = 0; channel < record.channels; ++channel) json.value(record.value(line, channel));
    json.endArray();
  }
  json.endArray().endObject();
  return json.text() + "\n";
}

int showSpectrum(const CallOptions& options, const std::string& path) {
  SpectrumRecord record;
  const LoadResult result = loadSpectrum(nativeFileSystem(), path, record);
  if (result.status == LoadStatus::loaded) return print(recordJson(record)) ? kAllDone : kFileError;
  TerminalPrompter(options.answer, options.quiet).message("Unable to open " + path + "\n" + result.reason);
  return kFileError;
}

}  // namespace

int runSpectrum(const CallOptions& options, WordReader words) {
  const SpectrumCall call = readCall(words);
  if (words.failed()) return wrongCall(words.error());
  if (!call.show.empty()) return showSpectrum(options, call.show);
  OpenedFile opened(options, call.file, call.selection);
  if (opened.doc == nullptr) return kFileError;
  return opened.doc->saveSpectrum(call.out, call.settings) == FileOutcome::done ? kAllDone : kFileError;
}

int runWindow(const CallOptions&, WordReader words) {
  if (words.rest() != 2) return wrongCall("window: KIND and N are wanted");
  const std::string name = words.take();
  const auto kind = windowKindIn(name);
  if (!kind) return wrongCall("window: " + unknownWindow(name));
  const auto count = numberIn<int64_t>(words.take());
  if (!count || *count < 0 || *count > kMostCoefficients) {
    return wrongCall("window: N is a whole number from 0 to " + std::to_string(kMostCoefficients));
  }
  std::vector<double> coefficients(static_cast<size_t>(*count));
  makeWindow(coefficients.data(), static_cast<int>(*count), *kind);
  std::string text;
  for (const double coefficient : coefficients) {
    char number[32];
    constexpr int kEveryDigit = 17;
    const auto end =
        std::to_chars(number, number + sizeof number, coefficient, std::chars_format::general, kEveryDigit);
    text.append(number, end.ptr).append("\n");
  }
  return print(text) ? kAllDone : kFileError;
}

}  // namespace plumetta
