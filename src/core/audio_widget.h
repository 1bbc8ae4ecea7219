// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace plumetta {

// Something that shows what is played: a meter, a scope, a clock. Audio thread; never allocates, never waits.
class AudioWidget {
 public:
  virtual ~AudioWidget() = default;

  // One block of output, before the general volume: `channelCount` buffers of `frames` floats each.
  virtual void feed(const float* const* channels, int frames, int channelCount) noexcept = 0;
  // Told only to the widget that shows the position: frames of the document, at its rate in Hz.
  virtual void setPosition(double frame, uint32_t sampleRate) noexcept = 0;
};

}  // namespace plumetta
