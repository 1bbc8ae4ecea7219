// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>

#include "audio/playback_controls.h"
#include "core/block_processor.h"
#include "core/wave.h"

namespace plumetta {

// Playing without a device, as fast as it goes. Every value stands for itself; no stored setting counts.
struct BounceOptions {
  int outputRate = 44100;         // Hz
  std::optional<int32_t> frames;  // exactly so many, or up to the last frame that is heard
  int bufferFrames = 2048;        // of each block, 1..kMostBounceBuffer
  int channels = 2;               // 1..16
  bool loop = false;              // without `frames` only with `wholeFile`: it would never end
  bool wholeFile = false;         // Play all instead of Play
  float generalVolume = 1.0f;
  bool automation = true;
  bool resampling = true;
  std::array<int, kMaxOutputChannels> routing{0, 1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
  BlockProcessor* rack = nullptr;  // null plays without one
};

// The longest buffer that an output takes.
inline constexpr int kMostBounceBuffer = 32767;

enum class BounceResult {
  done,
  cancelled,
  tooLong,  // more frames than a buffer can have, or than there is memory for
};

// Plays `source` through the playback callback into `target`: 32-bit floats at the output's rate, not limited
// after the general volume. Nothing else may play it meanwhile. UI thread.
BounceResult bounce(PlaybackSource& source, const BounceOptions& options, CWave& target,
                    const WaveProgress& progress);

}  // namespace plumetta
