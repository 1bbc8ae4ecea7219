// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli spectrum` and `plumetta-cli window`.
#include <algorithm>
#include <cctype>
#include <charconv>

#include "app/application.h"
#include "cli/call.h"
#include "cli/json.h"
#include "cli/terminal_prompter.h"
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

std::optional<int64_t> wholeNumberIn(const std::string& text) {
  int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

bool sameLetters(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
  return std::ranges::equal(a, b, {}, lower, lower);
}

std::optional<WindowKind> windowKindIn(const std::string& text) {
  const auto index = wholeNumberIn(text);
  for (int kind = 0; kind < kWindowKinds; ++kind) {
    if (index == kind || sameLetters(text, windowName(kind))) return static_cast<WindowKind>(kind);
  }
  return std::nullopt;
}

std::string unknownWindow(const std::string& text) {
  std::string error = "there is no window '" + text + "'; they are";
  for (int kind = 0; kind < kWindowKinds; ++kind) {
    error += (kind > 0 ? ", " : " ") + std::to_string(kind) + " " + windowName(kind);
  }
  return error;
}

void readSize(WordReader& words, int& size) {
  const auto number = wholeNumberIn(words.take());
  if (number && isSpectrumSize(*number)) {
    size = static_cast<int>(*number);
  } else {
    words.fail("spectrum: --size wants a power of two from " + std::to_string(kSmallestSpectrum) + " to " +
               std::to_string(kLargestSpectrum));
  }
}

void readWindow(WordReader& words, WindowKind& window) {
  const std::string text = words.take();
  const auto kind = windowKindIn(text);
  if (kind) window = *kind;
  if (!kind) words.fail("spectrum: " + unknownWindow(text));
}

// A word that takes none of the others' values behind it, or begins with dashes and is none of them.
void readFile(WordReader& words, const std::string& word, SpectrumCall& call) {
  if (!call.file.empty() || word.starts_with("--")) {
    words.fail("spectrum: what is '" + word + "'?");
  } else {
    call.file = absolutePath(word);
  }
}

SpectrumCall readCall(WordReader& words) {
  SpectrumCall call;
  while (!words.atEnd() && !words.failed()) {
    const std::string word = words.take();
    if (word == "--select") {
      call.selection.read(words, "spectrum");
    } else if (word == "--size" && !words.atEnd()) {
      readSize(words, call.settings.size);
    } else if (word == "--window" && !words.atEnd()) {
      readWindow(words, call.settings.window);
    } else if (word == "--out" && !words.atEnd()) {
      call.out = absolutePath(words.take());
    } else if (word == "--show" && !words.atEnd()) {
      call.show = absolutePath(words.take());
    } else {
      readFile(words, word, call);
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

int showSpectrum(Prompter& prompter, const std::string& path) {
  SpectrumRecord record;
  const LoadResult result = loadSpectrum(nativeFileSystem(), path, record);
  if (result.status == LoadStatus::loaded) return print(recordJson(record)) ? kAllDone : kFileError;
  prompter.message("Unable to open " + path + "\n" + result.reason);
  return kFileError;
}

}  // namespace

int runSpectrum(const CallOptions& options, WordReader words) {
  const SpectrumCall call = readCall(words);
  if (words.failed()) return wrongCall(words.error());
  TerminalPrompter prompter(options.answer, options.quiet);
  if (!call.show.empty()) return showSpectrum(prompter, call.show);
  Application app(prompter, nativeFileSystem(), options.home);
  FileOutcome outcome{};
  CPlumettaDoc* doc = app.openDocument(call.file, outcome);
  if (doc == nullptr) return kFileError;
  call.selection.apply(*doc);
  return doc->saveSpectrum(call.out, call.settings) == FileOutcome::done ? kAllDone : kFileError;
}

int runWindow(const CallOptions&, WordReader words) {
  if (words.rest() != 2) return wrongCall("window: KIND and N are wanted");
  const std::string name = words.take();
  const auto kind = windowKindIn(name);
  if (!kind) return wrongCall("window: " + unknownWindow(name));
  const auto count = wholeNumberIn(words.take());
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
