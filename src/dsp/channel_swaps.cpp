// SPDX-License-Identifier: GPL-3.0-or-later
// What moves samples between places: mirrored in time, from side to side.
#include <algorithm>
#include <array>
#include <utility>

#include "dsp/amplitude.h"
#include "dsp/sample_loops.h"

namespace plumetta {
namespace {

// Exchanges `pairs` frames of `channels` floats from `front` on with those that end at `back`, the outermost
// first; a fixed count lets the compiler move a frame in a register.
template <size_t channels>
void exchangeFrames(float* front, float* back, size_t pairs) {
  using Frame = std::array<float, channels>;
  auto* first = reinterpret_cast<Frame*>(front);
  auto* last = reinterpret_cast<Frame*>(back);
  for (size_t i = 0; i < pairs; ++i) std::swap(first[i], *(last - i));
}

void exchangeActive(const CWave& wave, float* front, float* back, size_t pairs) {
  const auto channels = static_cast<size_t>(wave.channels());
  for (size_t c = 0; c < channels; ++c) {
    if (!wave.isActive(static_cast<int>(c))) continue;
    for (size_t i = 0; i < pairs; ++i) std::swap(front[i * channels + c], *(back - i * channels + c));
  }
}

}  // namespace

bool reverse(CWave& wave, FrameRange range) {
  range = range.ordered();
  if (!range.liesIn(wave)) return false;
  const auto channels = static_cast<size_t>(wave.channels());
  const auto pairs = static_cast<size_t>(range.length()) / 2;
  float* front = wave.samples() + static_cast<size_t>(range.first) * channels;
  float* back = wave.samples() + static_cast<size_t>(range.last) * channels;
  const size_t pairsPerTurn = CWave::kSamplesPerTurn / channels / 2;
  for (size_t done = 0; done < pairs; done += pairsPerTurn) {
    const size_t count = std::min(pairsPerTurn, pairs - done);
    if (wave.allActive() && channels == 1) {
      exchangeFrames<1>(front, back, count);
    } else if (wave.allActive() && channels == 2) {
      exchangeFrames<2>(front, back, count);
    } else {
      exchangeActive(wave, front, back, count);
    }
    front += count * channels;
    back -= count * channels;
    wave.nextTurn();
  }
  return true;
}

bool removeVocals(CWave& wave, FrameRange range) {
  range = range.ordered();
  if (wave.channels() != 2 || !range.liesIn(wave)) return false;
  if (range.first == range.last) return true;  // the last frame is left alone
  forPieces(wave, {range.first, range.last - 1}, [](float* samples, size_t frames) {
    for (size_t f = 0; f < frames; ++f) {
      samples[2 * f] = samples[2 * f + 1] = samples[2 * f] - samples[2 * f + 1];
    }
  });
  return true;
}

bool swapStereo(CWave& wave, FrameRange range) {
  if (wave.channels() != 2 || wave.frames() == 0) return false;
  forPieces(wave, range.clampedTo(wave).ordered(), [](float* samples, size_t frames) {
    for (size_t f = 0; f < frames; ++f) {
      const float left = samples[2 * f];
      samples[2 * f] = samples[2 * f + 1];
      samples[2 * f + 1] = left;
    }
  });
  return true;
}

}  // namespace plumetta
