// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "core/wave.h"

namespace plumetta {

// A 32-bit float buffer whose sample of channel c in frame f is f + c / 100: every value tells where it was.
inline std::unique_ptr<CWave> countingWave(int channels, int32_t frames) {
  auto wave = std::make_unique<CWave>();
  wave->create(44100, channels, 32, frames, kFormatFloat);
  for (int32_t f = 0; f < frames; ++f) {
    for (int c = 0; c < channels; ++c)
      wave->setSample(f, c, static_cast<float>(f) + static_cast<float>(c) / 100);
  }
  return wave;
}

// The integer parts of a channel's samples: which frames stand where.
inline std::vector<int> framesIn(const CWave& wave, int channel = 0) {
  std::vector<int> order;
  for (int32_t f = 0; f < wave.frames(); ++f) order.push_back(static_cast<int>(wave.sample(f, channel)));
  return order;
}

inline std::vector<int> markerPositions(const CWave& wave) {
  std::vector<int> positions;
  for (const Marker& marker : wave.markers) positions.push_back(marker.position);
  return positions;
}

// The frames from..to, both included.
inline std::vector<int> span(int from, int to) {
  std::vector<int> frames;
  for (int f = from; f <= to; ++f) frames.push_back(f);
  return frames;
}

inline std::vector<int> operator+(std::vector<int> a, const std::vector<int>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

}  // namespace plumetta
