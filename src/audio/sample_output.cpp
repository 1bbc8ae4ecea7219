// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/sample_output.h"

namespace plumetta {
namespace {

double clamped(float value) noexcept {
  if (value >= 1.0f) return 1.0;
  if (value <= -1.0f) return -1.0;
  return value == value ? value : 0.0;
}

template <typename Stored>
void interleave(const float* const* channels, int channelCount, int frames, double scale, double offset,
                Stored* out) noexcept {
  for (int c = 0; c < channelCount; ++c) {
    const float* channel = channels[c];
    Stored* to = out + c;
    for (int f = 0; f < frames; ++f, to += channelCount) {
      const double value = channel != nullptr ? clamped(channel[f]) : 0.0;
      *to = static_cast<Stored>(value * scale + offset);
    }
  }
}

}  // namespace

void convertSamples(const float* const* channels, int channelCount, int frames, int bitDepth,
                    void* out) noexcept {
  switch (bitDepth) {
    case 8:
      return interleave(channels, channelCount, frames, 126.0, 127.0, static_cast<uint8_t*>(out));
    case 16:
      return interleave(channels, channelCount, frames, 32766.0, 0.0, static_cast<int16_t*>(out));
    case 24:
      return interleave(channels, channelCount, frames, 1.0, 0.0, static_cast<int32_t*>(out));
    default:
      return;
  }
}

}  // namespace plumetta
