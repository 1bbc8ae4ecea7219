// SPDX-License-Identifier: GPL-3.0-or-later
// What moves samples between places: mirrored in time, from side to side.
#include <algorithm>
#include <array>

#include "dsp/amplitude.h"

namespace plumetta {
namespace {

// Mirrors whole frames of `channels` floats each; a fixed count lets the compiler move them in registers.
template <size_t channels>
void reverseFrames(float* samples, size_t frames) {
  using Frame = std::array<float, channels>;
  auto* first = reinterpret_cast<Frame*>(samples);
  std::reverse(first, first + frames);
}

void reverseChannel(float* samples, size_t frames, size_t stride) {
  if (frames < 2) return;
  for (size_t front = 0, back = frames - 1; front < back; ++front, --back) {
    std::swap(samples[front * stride], samples[back * stride]);
  }
}

}  // namespace

bool reverse(CWave& wave, FrameRange range) {
  range = range.ordered();
  if (!range.liesIn(wave)) return false;
  const auto channels = static_cast<size_t>(wave.channels());
  const auto frames = static_cast<size_t>(range.length());
  float* first = wave.samples() + static_cast<size_t>(range.first) * channels;
  if (wave.allActive() && channels == 1) {
    reverseFrames<1>(first, frames);
  } else if (wave.allActive() && channels == 2) {
    reverseFrames<2>(first, frames);
  } else {
    for (size_t c = 0; c < channels; ++c) {
      if (wave.isActive(static_cast<int>(c))) reverseChannel(first + c, frames, channels);
    }
  }
  return true;
}

bool removeVocals(CWave& wave, FrameRange range) {
  range = range.ordered();
  if (wave.channels() != 2 || !range.liesIn(wave)) return false;
  float* samples = wave.samples();
  for (auto f = static_cast<size_t>(range.first); f < static_cast<size_t>(range.last); ++f) {
    samples[2 * f] = samples[2 * f + 1] = samples[2 * f] - samples[2 * f + 1];
  }
  return true;
}

bool swapStereo(CWave& wave, FrameRange range) {
  if (wave.channels() != 2 || wave.frames() == 0) return false;
  range = range.clampedTo(wave).ordered();
  float* samples = wave.samples();
  for (auto f = static_cast<size_t>(range.first); f <= static_cast<size_t>(range.last); ++f) {
    const float left = samples[2 * f];
    samples[2 * f] = samples[2 * f + 1];
    samples[2 * f + 1] = left;
  }
  return true;
}

}  // namespace plumetta
