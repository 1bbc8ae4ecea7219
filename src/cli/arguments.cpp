// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/arguments.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>

namespace plumetta {
namespace {

// The place of a word among those parted by "|".
std::optional<ParameterValue> placeOfWord(std::string_view word, std::string_view words) {
  for (int64_t place = 0;; ++place) {
    const size_t end = words.find('|');
    if (words.substr(0, end) == word) return place;
    if (end == std::string_view::npos) return std::nullopt;
    words.remove_prefix(end + 1);
  }
}

std::optional<ParameterValue> valueIn(const std::string& text, const Parameter& parameter) {
  if (*parameter.words != '\0') return placeOfWord(text, parameter.words);
  switch (parameter.type) {
    case ParameterType::boolean:
      if (text == "on") return true;
      if (text == "off") return false;
      return std::nullopt;
    case ParameterType::integer:
      if (const auto number = numberIn<int64_t>(text)) return *number;
      return std::nullopt;
    case ParameterType::real:
      if (const auto number = numberIn<double>(text)) return *number;
      return std::nullopt;
    case ParameterType::text:
      return text;
    case ParameterType::frame:
      if (const auto frame = readFrame(text)) return *frame;
      return std::nullopt;
  }
  return std::nullopt;
}

std::string wordAt(std::string_view words, int64_t place) {
  for (; place > 0; --place) words.remove_prefix(words.find('|') + 1);
  return std::string(words.substr(0, words.find('|')));
}

std::string placeholder(const Parameter& parameter) {
  if (*parameter.words != '\0') return parameter.words;
  std::string name = parameter.key;
  std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::toupper(c); });
  return name;
}

std::string textOf(const Parameter& parameter) {
  const ParameterValue& value = parameter.fallback;
  if (*parameter.words != '\0') return wordAt(parameter.words, std::get<int64_t>(value));
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "on" : "off";
  if (const auto* integer = std::get_if<int64_t>(&value)) return std::to_string(*integer);
  if (const auto* text = std::get_if<std::string>(&value)) return text->empty() ? "TEXT" : *text;
  char buffer[32];
  const auto* frame = std::get_if<FrameOrTime>(&value);
  const double number = frame != nullptr ? frame->value : std::get<double>(value);
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr};
}

// The option that a word sets: `key=...` of one of the parameters.
const Parameter* optionOf(const std::string& word, std::span<const Parameter> parameters) {
  const size_t equals = word.find('=');
  if (equals == std::string::npos) return nullptr;
  for (const Parameter& parameter : parameters) {
    if (!parameter.positional && word.compare(0, equals, parameter.key) == 0) return &parameter;
  }
  return nullptr;
}

}  // namespace

std::optional<FrameOrTime> readFrame(std::string_view text) {
  double unit = 0;
  if (text.ends_with("ms")) {
    unit = 0.001;
    text.remove_suffix(2);
  } else if (text.ends_with('s')) {
    unit = 1;
    text.remove_suffix(1);
  } else {
    const auto frames = numberIn<int64_t>(text);
    if (!frames) return std::nullopt;
    return FrameOrTime{static_cast<double>(*frames), false};
  }
  const auto number = numberIn<double>(text);
  if (!number) return std::nullopt;
  return FrameOrTime{*number * unit, true};
}

Arguments readArguments(WordReader& words, std::span<const Parameter> parameters, const std::string& what,
                        std::vector<bool>& given) {
  Arguments arguments;
  given.assign(parameters.size(), false);
  for (const Parameter& parameter : parameters) {
    arguments.push_back(parameter.fallback);
    if (!parameter.positional) continue;
    given[arguments.size() - 1] = true;
    if (words.atEnd()) {
      words.fail(what + ": " + placeholder(parameter) + " is missing");
      return arguments;
    }
    const std::string word = words.take();
    const auto value = valueIn(word, parameter);
    if (!value) words.fail(what + ": " + placeholder(parameter) + " can't be '" + word + "'");
    if (value) arguments.back() = *value;
  }
  while (!words.failed() && !words.atEnd()) {
    const Parameter* option = optionOf(words.peek(), parameters);
    if (option == nullptr) break;
    const std::string word = words.take();
    const auto value = valueIn(word.substr(word.find('=') + 1), *option);
    if (!value) words.fail(what + ": malformed '" + word + "'");
    const auto place = static_cast<size_t>(option - parameters.data());
    given[place] = true;
    if (value) arguments[place] = *value;
  }
  return arguments;
}

void SelectionOption::read(WordReader& words, const std::string& what) {
  for (std::optional<FrameOrTime>* bound : {&from, &to}) {
    if (!words.atEnd()) *bound = readFrame(words.take());
    if (!*bound) return words.fail(what + ": --select wants FROM and TO");
  }
}

void SelectionOption::apply(CPlumettaDoc& doc) const {
  const uint32_t rate = doc.wave().sampleRate();
  if (from && to) doc.select(from->frames(rate), to->frames(rate));
}

void readNumber(WordReader& words, const std::string& what, const std::string& option, bool (*accepted)(int),
                std::optional<int>& number) {
  number.reset();
  if (!words.atEnd()) number = numberIn<int>(words.take());
  if (!number || !accepted(*number)) words.fail(what + ": " + option + " wants another number");
}

std::string usageOf(const std::string& what, std::span<const Parameter> parameters) {
  std::string usage = what;
  std::string options;
  for (const Parameter& parameter : parameters) {
    if (parameter.positional) {
      usage += " " + placeholder(parameter);
    } else {
      options += (options.empty() ? "" : " ") + std::string(parameter.key) + "=" + textOf(parameter);
    }
  }
  return options.empty() ? usage : usage + " [" + options + "]";
}

}  // namespace plumetta
