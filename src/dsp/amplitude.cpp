// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/amplitude.h"

#include <cmath>

#include "dsp/channel_scan.h"
#include "dsp/sample_loops.h"

namespace plumetta {
namespace {

float activePeak(CWave& wave, FrameRange range) {
  const auto channels = static_cast<size_t>(wave.channels());
  Extremes extremes[kMaxChannels];
  forPieces(wave, range,
            [&](const float* samples, size_t frames) { scanExtremes(samples, frames, channels, extremes); });
  Extremes all;
  for (size_t c = 0; c < channels; ++c) {
    if (wave.isActive(static_cast<int>(c))) all.take(extremes[c]);
  }
  return all.peak();
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
  const float peak = activePeak(wave, range.clampedTo(wave).ordered());
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
  double sums[kMaxChannels] = {};
  forPieces(wave, range,
            [&](const float* samples, size_t frames) { scanSums(samples, frames, channels, sums, nullptr); });
  // A block of whole frames, so that the offsets line up with the samples and vectors can be used.
  float offsets[4 * kMaxChannels];
  const size_t block = 4 * channels;
  for (size_t i = 0; i < block; ++i) {
    const size_t c = i % channels;
    const bool active = wave.isActive(static_cast<int>(c));
    offsets[i] = active ? static_cast<float>(sums[c] / (range.last - range.first)) : 0.0f;
  }
  forPieces(wave, range, [&](float* samples, size_t frames) {
    const size_t count = frames * channels;
    size_t i = 0;
    for (; i + block <= count; i += block) {
      for (size_t lane = 0; lane < block; ++lane) samples[i + lane] -= offsets[lane];
    }
    for (size_t lane = 0; i < count; ++i, ++lane) samples[i] -= offsets[lane];
  });
  return true;
}

bool invert(CWave& wave, FrameRange range) { return volume(wave, range, -1.0f); }

bool interpolate(CWave& wave, FrameRange range) {
  range = range.ordered();
  if (range.first == range.last || wave.frames() == 0) return false;
  range = range.clampedTo(wave);
  if (range.first == range.last) return false;
  const auto channels = static_cast<size_t>(wave.channels());
  float starts[kMaxChannels];
  float steps[kMaxChannels];
  for (int c = 0; c < wave.channels(); ++c) {
    starts[c] = wave.sample(range.first, c);
    steps[c] = (wave.sample(range.last, c) - starts[c]) / static_cast<float>(range.last - range.first);
  }
  size_t k = 0;
  forPieces(wave, range, [&](float* samples, size_t frames) {
    for (const size_t end = k + frames; k < end; ++k, samples += channels) {
      for (size_t c = 0; c < channels; ++c) {
        if (wave.isActive(static_cast<int>(c))) samples[c] = starts[c] + static_cast<float>(k) * steps[c];
      }
    }
  });
  return true;
}

bool applyVolumeEnvelope(CWave& wave) {
  if (!wave.envelope.active() || wave.envelope.channelCount() != wave.channels()) return false;
  int32_t first = 0;
  forPieces(wave, {0, wave.frames() - 1}, [&](float* samples, size_t frames) {
    const auto count = static_cast<int32_t>(frames);
    wave.envelope.apply(samples, first, count);
    first += count;
  });
  return true;
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
