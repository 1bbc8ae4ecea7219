// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/frequency_rows.h"

#include <algorithm>
#include <cmath>

namespace plumetta {
namespace {

float decibelsOf(float power, float scale) {
  constexpr float kSilence = 1e-30f;  // kSilenceDb
  return 10.0f * std::log10(std::max(power * scale, kSilence));
}

}  // namespace

FrequencyRows::FrequencyRows(const FrequencyAxis& axis, double hzPerLine, size_t lines, int rows) {
  const auto last = static_cast<double>(lines - 1);
  const auto lineAt = [&](double row) { return std::clamp(axis.hz(row / rows) / hzPerLine, 0.0, last); };
  rows_.reserve(static_cast<size_t>(std::max(rows, 0)));
  for (int row = 0; row < rows; ++row) {
    const auto first = static_cast<uint32_t>(std::ceil(lineAt(row)));
    const auto end = static_cast<uint32_t>(std::ceil(lineAt(row + 1)));
    if (end > first) {
      rows_.push_back({first, end, 0.0f});
      continue;
    }
    const double middle = lineAt(row + 0.5);
    const double below = std::min(std::floor(middle), last - 1);
    const auto line = static_cast<uint32_t>(below);
    rows_.push_back({line, line, static_cast<float>(middle - below)});
  }
}

void FrequencyRows::decibels(std::span<const float> powers, double scale, std::span<float> db) const {
  const auto factor = static_cast<float>(scale);
  for (size_t i = 0; i < rows_.size(); ++i) {
    const Row& row = rows_[i];
    if (row.end > row.first) {
      const auto lines = powers.subspan(row.first, row.end - row.first);
      db[i] = decibelsOf(*std::max_element(lines.begin(), lines.end()), factor);
    } else {
      const float below = decibelsOf(powers[row.first], factor);
      db[i] = below + row.between * (decibelsOf(powers[row.first + 1], factor) - below);
    }
  }
}

}  // namespace plumetta
