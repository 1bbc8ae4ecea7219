// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/spectrum_options.h"

#include <algorithm>
#include <cctype>

#include "platform/paths.h"

namespace plumetta {
namespace {

bool sameLetters(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
  return std::ranges::equal(a, b, {}, lower, lower);
}

}  // namespace

std::optional<WindowKind> windowKindIn(const std::string& text) {
  const auto index = numberIn<int64_t>(text);
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

void readSpectrumSize(WordReader& words, const std::string& what, int& size) {
  const auto number = numberIn<int64_t>(words.take());
  if (number && isSpectrumSize(*number)) {
    size = static_cast<int>(*number);
  } else {
    words.fail(what + ": --size wants a power of two from " + std::to_string(kSmallestSpectrum) + " to " +
               std::to_string(kLargestSpectrum));
  }
}

void readWindowKind(WordReader& words, const std::string& what, WindowKind& window) {
  const std::string text = words.take();
  const auto kind = windowKindIn(text);
  if (kind) window = *kind;
  if (!kind) words.fail(what + ": " + unknownWindow(text));
}

void readFileWord(WordReader& words, const std::string& what, const std::string& word, std::string& file) {
  if (!file.empty() || word.starts_with("--")) {
    words.fail(what + ": what is '" + word + "'?");
  } else {
    file = absolutePath(word);
  }
}

}  // namespace plumetta
