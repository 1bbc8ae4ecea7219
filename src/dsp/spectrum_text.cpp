// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/spectrum_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace plumetta {
namespace {

constexpr int kVersion = 1;
constexpr double kMultiplier = 1000.0;
constexpr std::string_view kBlanks = " \t";
// The largest double has 309 digits before its point.
constexpr size_t kLongestNumber = 336;

void append(std::string& text, double value, int decimals) {
  char number[kLongestNumber];
  const auto end =
      std::to_chars(number, number + sizeof number, value, std::chars_format::fixed, decimals).ptr;
  text.append(number, end);
}

void appendField(std::string& text, const char* key, double value) {
  text += key;
  append(text, value, 6);
  text += '\n';
}

// The next line without its end; `text` goes on behind it.
std::string_view takeLine(std::string_view& text) {
  const size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// The next word of a line; empty at its end.
std::string_view takeWord(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
  const std::string_view word = line.substr(0, line.find_first_of(kBlanks));
  line.remove_prefix(word.size());
  return word;
}

template <class Number>
std::optional<Number> numberIn(std::string_view word) {
  if (word.starts_with('+')) word.remove_prefix(1);
  Number number{};
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  if (error != std::errc{} || end != word.data() + word.size()) return std::nullopt;
  if constexpr (std::is_floating_point_v<Number>) {
    if (!std::isfinite(number)) return std::nullopt;
  }
  return number;
}

// What stands behind a key, anywhere in the line; none without the key.
std::optional<std::string_view> fieldIn(std::string_view line, std::string_view key) {
  const size_t at = line.find(key);
  if (at == std::string_view::npos) return std::nullopt;
  line.remove_prefix(at + key.size());
  return takeWord(line);
}

bool readCount(std::string_view line, std::string_view key, int32_t& count) {
  const auto field = fieldIn(line, key);
  const auto number = field ? numberIn<int32_t>(*field) : std::nullopt;
  if (number) count = *number;
  return number.has_value();
}

// A line without the key leaves `value`; false for a key with something else than a number.
bool readReal(std::string_view line, std::string_view key, double& value) {
  const auto field = fieldIn(line, key);
  if (!field) return true;
  const auto number = numberIn<double>(*field);
  if (number) value = *number;
  return number.has_value();
}

bool readValues(std::string_view line, double scale, double* values, int32_t channels) {
  for (int32_t c = 0; c < channels; ++c) {
    const auto number = numberIn<double>(takeWord(line));
    if (!number) return false;
    values[c] = *number / scale;
    if (!std::isfinite(values[c])) return false;
  }
  return true;
}

// Where the scale's line has been left out altogether, the first values stand in its place.
bool isLineOfValues(std::string_view line, int32_t channels) {
  for (int32_t c = 0; c < channels; ++c) {
    if (!numberIn<double>(takeWord(line))) return false;
  }
  return takeWord(line).empty();
}

// Every value takes a digit and what parts it from the next.
bool hasRoomFor(std::string_view text, int64_t values) {
  return values <= static_cast<int64_t>((text.size() + 1) / 2);
}

bool readHead(std::string_view& text, SpectrumRecord& record) {
  int32_t version = 0;
  return readCount(takeLine(text), "version=", version) && version == kVersion &&
         readCount(takeLine(text), "channel=", record.channels) && record.channels >= 1 &&
         readCount(takeLine(text), "number=", record.lines) && record.lines >= 0 &&
         hasRoomFor(text, int64_t{record.channels} * record.lines) &&
         readReal(takeLine(text), "fe=", record.sampleRate) &&
         readReal(takeLine(text), "freqstart=", record.startHz) &&
         readReal(takeLine(text), "freqstop=", record.stopHz);
}

}  // namespace

std::string spectrumText(const SpectrumRecord& record) {
  std::string text = "version=" + std::to_string(kVersion) + "\nchannel=" + std::to_string(record.channels) +
                     "\nnumber=" + std::to_string(record.lines) + "\n";
  appendField(text, "fe=", record.sampleRate);
  appendField(text, "freqstart=", record.startHz);
  appendField(text, "freqstop=", record.stopHz);
  appendField(text, "mult=", kMultiplier);
  for (int32_t line = 0; line < record.lines; ++line) {
    for (int32_t channel = 0; channel < record.channels; ++channel) {
      append(text, record.value(line, channel) * kMultiplier, 8);
      text += ' ';
    }
    text += '\n';
  }
  return text;
}

bool parseSpectrum(std::string_view text, SpectrumRecord& record) {
  SpectrumRecord read = record;
  if (!readHead(text, read)) return false;
  double scale = 1.0;
  const std::string_view beforeScale = text;
  const std::string_view line = takeLine(text);
  if (!readReal(line, "mult=", scale)) return false;
  if (!fieldIn(line, "mult=") && isLineOfValues(line, read.channels)) text = beforeScale;
  const auto channels = static_cast<size_t>(read.channels);
  read.values.assign(channels * static_cast<size_t>(read.lines), 0.0);
  for (size_t i = 0; i < read.values.size(); i += channels) {
    if (!readValues(takeLine(text), scale, read.values.data() + i, read.channels)) return false;
  }
  record = std::move(read);
  return true;
}

}  // namespace plumetta
