// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"
#include "dsp/frame_range.h"

namespace plumetta {

// Calls `work(samples, frames)` piece by piece over a range that lies in the buffer, with a turn for others
// in between; work that is slow on a sample asks for fewer of them a turn.
template <class Work>
void forPieces(CWave& wave, FrameRange range, Work work, size_t samplesPerTurn = CWave::kSamplesPerTurn) {
  const auto channels = static_cast<size_t>(wave.channels());
  const size_t framesPerTurn = samplesPerTurn / channels;
  const auto end = static_cast<size_t>(range.last) + 1;
  for (auto frame = static_cast<size_t>(range.first); frame < end; frame += framesPerTurn) {
    work(wave.samples() + frame * channels, std::min(framesPerTurn, end - frame));
    wave.nextTurn();
  }
}

// Replaces every active sample of a range by `change` of itself.
template <class Change>
void changeActiveSamples(CWave& wave, FrameRange range, Change change) {
  const auto channels = static_cast<size_t>(wave.channels());
  forPieces(wave, range, [&](float* samples, size_t frames) {
    if (wave.allActive()) {
      for (size_t i = 0; i < frames * channels; ++i) samples[i] = change(samples[i]);
      return;
    }
    for (size_t c = 0; c < channels; ++c) {
      if (!wave.isActive(static_cast<int>(c))) continue;
      for (size_t i = c; i < frames * channels; i += channels) samples[i] = change(samples[i]);
    }
  });
}

}  // namespace plumetta
