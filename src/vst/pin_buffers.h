// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <vector>

#include "vst/vst_plugin.h"

namespace plumetta {

// A buffer for every channel that a plug-in may ask for, whatever it claims: kMostPins valid pointers, the
// last of which share one buffer. All memory is taken when it is made.
class PinBuffers {
 public:
  explicit PinBuffers(int framesPerPin);

  int frames() const noexcept { return frames_; }
  float** pointers() noexcept { return pointers_.data(); }
  float* own(int pin) noexcept;
  // Puts somebody's buffers in place of the first ones; the rest are its own.
  void borrow(float** channels, int channelCount, int offsetFrames) noexcept;
  // Silences the first `frames` of the pins from..to-1.
  void clear(int from, int to, int frames) noexcept;

 private:
  int frames_;
  std::vector<float> memory_;
  std::array<float*, kMostPins> pointers_{};
};

}  // namespace plumetta
