// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "doc/frequency_axis.h"

namespace plumetta {

// Brings the lines of a spectrum to evenly spaced places of an axis. A place that holds several lines shows
// the loudest, so that no tone is lost; between lines decibels are interpolated.
class FrequencyRows {
 public:
  // Place 0 has the axis' low end. Lines lie `hzPerLine` apart, the first at 0 Hz; there are at least two.
  FrequencyRows(const FrequencyAxis& axis, double hzPerLine, size_t lines, int rows);

  size_t size() const { return rows_.size(); }
  // Decibels of each place, from the power of each line times `scale`; silence is at kSilenceDb.
  void decibels(std::span<const float> powers, double scale, std::span<float> db) const;

  static constexpr float kSilenceDb = -300.0f;

 private:
  struct Row {
    uint32_t first, end;  // the lines that lie in it; none: it lies between line `first` and the next
    float between;        // 0 at `first`, 1 at the next
  };
  std::vector<Row> rows_;
};

}  // namespace plumetta
