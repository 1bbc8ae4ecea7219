// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

#include "core/wave.h"

namespace plumetta {

// One channel of interleaved samples.
class StridedSamples {
 public:
  StridedSamples(CWave& wave, int channel) : wave_(wave), channel_(channel) {}

  size_t frames() const { return static_cast<size_t>(wave_.frames()); }
  float& operator[](size_t frame) const {
    return wave_.samples()[frame * static_cast<size_t>(wave_.channels()) + static_cast<size_t>(channel_)];
  }
  // A turn for others once in a while, as every frame is passed; false when the work shall stop.
  bool passed(size_t frame) const {
    constexpr size_t kFramesPerTurn = 4096;
    if (frame % kFramesPerTurn != 0) return true;
    const double ofChannel = static_cast<double>(frame) / static_cast<double>(frames());
    return wave_.nextTurn((channel_ + ofChannel) / wave_.channels());
  }

 private:
  CWave& wave_;
  int channel_;
};

}  // namespace plumetta
