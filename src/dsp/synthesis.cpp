// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/synthesis.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace plumetta {
namespace {

constexpr int32_t kFramesPerTurn = 4096;
constexpr double kLowestHz = 20.0;
constexpr double kHighestHz = 20000.0;

void setFrame(CWave& wave, int32_t frame, float value) {
  for (int c = 0; c < wave.channels(); ++c) {
    if (wave.isActive(c)) wave.setSample(frame, c, value);
  }
  if (frame % kFramesPerTurn == 0) wave.nextTurn();
}

// Cycles since the start of a sweep over `frames` frames, at the frame `t` (0 to 1) of it. The phase is the
// integral of the frequency: f0 t + (f1 - f0) t² / 2, or f0 (k^t - 1) / ln k with k = f1 / f0.
double sweepCycles(SynthesisType type, double t, double seconds, double highest) {
  const double ratio = highest / kLowestHz;
  if (type == SynthesisType::sweepLinear || ratio == 1.0) {
    return seconds * (kLowestHz * t + (highest - kLowestHz) * t * t / 2);
  }
  return seconds * kLowestHz * (std::pow(ratio, t) - 1) / std::log(ratio);
}

void impulses(CWave& wave, float amplitude) {
  const auto period = static_cast<int32_t>(std::clamp<uint32_t>(wave.sampleRate(), 1, kMaxFrames));
  for (int32_t frame = 0; frame < wave.frames(); ++frame) {
    setFrame(wave, frame, frame % period == 0 ? amplitude : 0.0f);
  }
}

}  // namespace

void synthesize(CWave& wave, SynthesisType type, float amplitude) {
  if (type == SynthesisType::impulseTrain) return impulses(wave, amplitude);
  const double rate = wave.sampleRate();
  const double highest = std::min(kHighestHz, rate / 2);
  const double seconds = wave.frames() / rate;
  for (int32_t frame = 0; frame < wave.frames(); ++frame) {
    const double t = static_cast<double>(frame) / wave.frames();
    const double cycles = sweepCycles(type, t, seconds, highest);
    const double phase = 2 * std::numbers::pi * (cycles - std::floor(cycles));
    setFrame(wave, frame, amplitude * static_cast<float>(std::sin(phase)));
  }
}

}  // namespace plumetta
