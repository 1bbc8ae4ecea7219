// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/amplitude.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "dsp/sample_loops.h"

namespace plumetta {
namespace {

// The largest and smallest active sample; starting values as for no sample at all.
struct Extremes {
  float largest = -1000.0f;
  float smallest = 1000.0f;

  // What is not a number fails both comparisons and is passed over.
  void take(float x) {
    largest = x > largest ? x : largest;
    smallest = x < smallest ? x : smallest;
  }
  void take(const Extremes& other) {
    take(other.largest);
    take(other.smallest);
  }
  float peak() const { return std::max(largest, -smallest); }
};

// Independent lanes, which the compiler turns into vectors.
Extremes extremesOf(const float* samples, size_t count) {
  constexpr size_t kLanes = 32;
  float largest[kLanes];
  float smallest[kLanes];
  std::fill_n(largest, kLanes, Extremes{}.largest);
  std::fill_n(smallest, kLanes, Extremes{}.smallest);
  size_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    for (size_t lane = 0; lane < kLanes; ++lane) {
      const float x = samples[i + lane];
      largest[lane] = x > largest[lane] ? x : largest[lane];
      smallest[lane] = x < smallest[lane] ? x : smallest[lane];
    }
  }
  Extremes all;
  for (size_t lane = 0; lane < kLanes; ++lane) all.take(Extremes{largest[lane], smallest[lane]});
  for (; i < count; ++i) all.take(samples[i]);
  return all;
}

Extremes activeExtremes(CWave& wave, FrameRange range) {
  Extremes all;
  forActiveSamples(
      wave, range, [&](const float* samples, size_t count) { all.take(extremesOf(samples, count)); },
      [&](const float* samples, size_t frames, size_t stride) {
        for (size_t i = 0; i < frames; ++i) all.take(samples[i * stride]);
      });
  return all;
}

// Sums of one to sixteen interleaved channels, in double precision. Four partial sums a channel keep the adders
// busy; frames are taken in blocks of four.
void channelSums(const float* samples, size_t frames, size_t channels, double* sums) {
  double lanes[4 * kMaxChannels] = {};
  const size_t block = 4 * channels;
  size_t f = 0;
  for (; f + 4 <= frames; f += 4, samples += block) {
    for (size_t lane = 0; lane < block; ++lane) lanes[lane] += samples[lane];
  }
  for (size_t i = 0; i < (frames - f) * channels; ++i) lanes[i % channels] += samples[i];
  for (size_t c = 0; c < channels; ++c) {
    sums[c] = (lanes[c] + lanes[c + channels]) + (lanes[c + 2 * channels] + lanes[c + 3 * channels]);
  }
}

}  // namespace

float gainOfLevel(double levelDb) { return static_cast<float>(std::pow(10.0, levelDb / 20.0)); }

bool volume(CWave& wave, FrameRange range, float factor) {
  if (wave.frames() == 0) return false;
  changeActiveSamples(wave, range.clampedTo(wave).ordered(), [=](float x) { return x * factor; });
  return true;
}

bool normalize(CWave& wave, FrameRange range, double levelDb) {
  if (wave.frames() == 0 || wave.activeCount() == 0) return false;
  const float peak = activeExtremes(wave, range.clampedTo(wave).ordered()).peak();
  return volume(wave, range, peak != 0.0f ? gainOfLevel(levelDb) / peak : 0.0f);
}

bool clip(CWave& wave, FrameRange range, double levelDb) {
  range = range.ordered();
  if (range.first == range.last || !range.liesIn(wave)) return false;
  const float level = gainOfLevel(levelDb);
  changeActiveSamples(wave, range, [=](float x) {
    const float above = x >= level ? level : x;
    return above <= -level ? -level : above;
  });
  return true;
}

bool removeDc(CWave& wave, FrameRange range) {
  range = range.ordered();
  if (range.first == range.last || !range.liesIn(wave)) return false;
  const auto channels = static_cast<size_t>(wave.channels());
  const auto frames = static_cast<size_t>(range.length());
  float* first = wave.samples() + static_cast<size_t>(range.first) * channels;
  double sums[kMaxChannels];
  channelSums(first, frames, channels, sums);
  // A block of whole frames, so that the offsets line up with the samples and vectors can be used.
  float offsets[4 * kMaxChannels];
  for (size_t i = 0; i < 4 * channels; ++i) {
    const size_t c = i % channels;
    const bool active = wave.isActive(static_cast<int>(c));
    offsets[i] = active ? static_cast<float>(sums[c] / (range.last - range.first)) : 0.0f;
  }
  const size_t block = 4 * channels;
  const size_t count = frames * channels;
  size_t i = 0;
  for (; i + block <= count; i += block) {
    for (size_t lane = 0; lane < block; ++lane) first[i + lane] -= offsets[lane];
  }
  for (size_t lane = 0; i < count; ++i, ++lane) first[i] -= offsets[lane];
  return true;
}

bool invert(CWave& wave, FrameRange range) { return volume(wave, range, -1.0f); }

bool interpolate(CWave& wave, FrameRange range) {
  range = range.ordered();
  if (range.first == range.last || wave.frames() == 0) return false;
  range = range.clampedTo(wave);
  for (int c = 0; c < wave.channels(); ++c) {
    if (!wave.isActive(c)) continue;
    const float a = wave.sample(range.first, c);
    const float step = (wave.sample(range.last, c) - a) / static_cast<float>(range.last - range.first);
    for (int32_t k = 0; k < range.length(); ++k) {
      wave.setSample(range.first + k, c, a + static_cast<float>(k) * step);
    }
  }
  return range.first != range.last;
}

bool setDirac(CWave& wave, int32_t frame) {
  if (frame < 0 || frame >= wave.frames()) return false;
  for (int c = 0; c < wave.channels(); ++c) {
    if (wave.isActive(c)) wave.setSample(frame, c, 1.0f);
  }
  return true;
}

bool setStep(CWave& wave, int32_t frame) {
  if (frame < 0 || frame >= wave.frames()) return false;
  const auto fill = [&](FrameRange range, float value) {
    changeActiveSamples(wave, range, [=](float) { return value; });
  };
  if (frame > 0) fill({0, frame - 1}, 0.0f);
  fill({frame, wave.frames() - 1}, 1.0f);
  return true;
}

}  // namespace plumetta
