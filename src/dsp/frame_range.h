// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>

#include "core/wave.h"

namespace plumetta {

// Frames from `first` to `last`, both included. Routines take the ends in either order.
struct FrameRange {
  int32_t first = 0;
  int32_t last = 0;

  FrameRange ordered() const { return {std::min(first, last), std::max(first, last)}; }
  int32_t length() const { return last - first + 1; }
  bool liesIn(const CWave& wave) const { return first >= 0 && last < wave.frames(); }
  FrameRange clampedTo(const CWave& wave) const {
    const int32_t end = wave.frames() - 1;
    return {std::clamp(first, 0, std::max(end, 0)), std::clamp(last, 0, std::max(end, 0))};
  }
};

}  // namespace plumetta
