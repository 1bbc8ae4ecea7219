// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace plumetta {

// A version as people write it: numbers with points between. They are compared number by number, so that 1.10
// comes after 1.9; numbers that are missing at the end count as 0.
class VersionNumber {
 public:
  // Of digits and points alone, at most 64 of them; a line end behind them is passed over.
  static std::optional<VersionNumber> parse(std::string_view text);

  const std::string& text() const { return text_; }
  std::strong_ordering operator<=>(const VersionNumber& other) const;
  bool operator==(const VersionNumber& other) const { return (*this <=> other) == 0; }

 private:
  std::string text_;
  std::vector<std::string> numbers_;  // in digits, without zeros ahead
};

}  // namespace plumetta
