// SPDX-License-Identifier: GPL-3.0-or-later
#include "net/version_number.h"

#include <algorithm>

namespace plumetta {
namespace {

constexpr size_t kLongestVersion = 64;

std::string_view withoutLineEnd(std::string_view text) {
  if (text.ends_with('\n')) text.remove_suffix(1);
  if (text.ends_with('\r')) text.remove_suffix(1);
  return text;
}

// Of digits alone; "" is 0.
std::optional<std::string> numberIn(std::string_view digits) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  if (digits.empty() || !std::ranges::all_of(digits, isDigit)) return std::nullopt;
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  return std::string(digits);
}

}  // namespace

std::optional<VersionNumber> VersionNumber::parse(std::string_view text) {
  text = withoutLineEnd(text);
  if (text.size() > kLongestVersion) return std::nullopt;
  VersionNumber version;
  version.text_ = text;
  while (true) {
    const size_t point = text.find('.');
    auto number = numberIn(text.substr(0, point));
    if (!number) return std::nullopt;
    version.numbers_.push_back(std::move(*number));
    if (point == std::string_view::npos) return version;
    text.remove_prefix(point + 1);
  }
}

std::strong_ordering VersionNumber::operator<=>(const VersionNumber& other) const {
  const size_t count = std::max(numbers_.size(), other.numbers_.size());
  for (size_t i = 0; i < count; ++i) {
    const std::string own = i < numbers_.size() ? numbers_[i] : "";
    const std::string theirs = i < other.numbers_.size() ? other.numbers_[i] : "";
    // More digits are the larger number.
    if (own.size() != theirs.size()) return own.size() <=> theirs.size();
    if (own != theirs) return own < theirs ? std::strong_ordering::less : std::strong_ordering::greater;
  }
  return std::strong_ordering::equal;
}

}  // namespace plumetta
