// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace plumetta {

std::optional<double> parseNumber(std::string text) {
  constexpr const char* kBlanks = " \t";
  text.erase(0, std::min(text.find_first_not_of(kBlanks), text.size()));
  text.erase(text.find_last_not_of(kBlanks) + 1);
  std::replace(text.begin(), text.end(), ',', '.');
  if (text.starts_with('+')) text.erase(0, 1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::string numberText(double value) {
  char text[32];
  // Plain digits as long as they stay readable: 100000 rather than 1e+05.
  const auto format = std::fabs(value) < 1e15 ? std::chars_format::fixed : std::chars_format::general;
  auto result = std::to_chars(text, text + sizeof text, value, format);
  if (result.ec != std::errc{}) result = std::to_chars(text, text + sizeof text, value);
  return {text, result.ptr};
}

}  // namespace plumetta
