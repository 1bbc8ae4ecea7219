// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/zero_crossing.h"

#include <cmath>

namespace plumetta {
namespace {

double activeSum(const CWave& wave, int32_t frame) {
  double sum = 0;
  for (int channel = 0; channel < wave.channels(); ++channel) {
    if (wave.isActive(channel)) sum += wave.sample(frame, channel);
  }
  return sum;
}

// Whether a frame is the one that stands for a crossing to one of its neighbours, or is zero itself.
bool crossesAt(const CWave& wave, int32_t frame) {
  const double here = activeSum(wave, frame);
  if (here == 0) return true;
  for (const int32_t side : {frame - 1, frame + 1}) {
    if (side < 0 || side >= wave.frames()) continue;
    const double there = activeSum(wave, side);
    if (here * there < 0 && std::abs(here) <= std::abs(there)) return true;
  }
  return false;
}

}  // namespace

int32_t nearestZeroCrossing(const CWave& wave, int32_t frame, int32_t reach) {
  for (int32_t distance = 0; distance <= reach; ++distance) {
    for (const int64_t at : {int64_t{frame} - distance, int64_t{frame} + distance}) {
      if (at >= 0 && at < wave.frames() && crossesAt(wave, static_cast<int32_t>(at))) {
        return static_cast<int32_t>(at);
      }
    }
  }
  return frame;
}

}  // namespace plumetta
