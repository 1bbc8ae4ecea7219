// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"
#include "dsp/frame_range.h"

namespace plumetta {

// Calls `contiguous(samples, count)` for all samples of a range when every channel is active, else
// `strided(first, frames, stride)` for each active channel; piece by piece, with a turn for others in between.
// The range must lie in the buffer.
template <class Contiguous, class Strided>
void forActiveSamples(CWave& wave, FrameRange range, Contiguous contiguous, Strided strided) {
  const auto channels = static_cast<size_t>(wave.channels());
  const size_t framesPerTurn = CWave::kSamplesPerTurn / channels;
  const auto end = static_cast<size_t>(range.last) + 1;
  for (auto frame = static_cast<size_t>(range.first); frame < end; frame += framesPerTurn) {
    const size_t frames = std::min(framesPerTurn, end - frame);
    float* first = wave.samples() + frame * channels;
    if (wave.allActive()) contiguous(first, frames * channels);
    for (size_t c = 0; c < channels && !wave.allActive(); ++c) {
      if (wave.isActive(static_cast<int>(c))) strided(first + c, frames, channels);
    }
    wave.nextTurn();
  }
}

// Replaces every active sample of a range by `change` of itself.
template <class Change>
void changeActiveSamples(CWave& wave, FrameRange range, Change change) {
  forActiveSamples(
      wave, range,
      [&](float* samples, size_t count) {
        for (size_t i = 0; i < count; ++i) samples[i] = change(samples[i]);
      },
      [&](float* samples, size_t frames, size_t stride) {
        for (size_t i = 0; i < frames; ++i) samples[i * stride] = change(samples[i * stride]);
      });
}

}  // namespace plumetta
