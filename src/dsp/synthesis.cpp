// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/synthesis.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "dsp/cornered_wave.h"
#include "dsp/noise.h"

namespace plumetta {
namespace {

constexpr int32_t kFramesPerTurn = 4096;
constexpr double kLowestHz = 20.0;
constexpr double kHighestHz = 20000.0;

bool setFrame(CWave& wave, int32_t frame, float value) {
  for (int c = 0; c < wave.channels(); ++c) {
    if (wave.isActive(c)) wave.setSample(frame, c, value);
  }
  return frame % kFramesPerTurn != 0 || wave.nextTurn(static_cast<double>(frame) / wave.frames());
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

bool impulses(CWave& wave, float amplitude, double hz) {
  const double period = std::max(wave.sampleRate() / hz, 1.0);
  double count = 0;  // of impulses so far
  for (int32_t frame = 0; frame < wave.frames(); ++frame) {
    const bool due = frame >= std::round(count * period);
    if (due) ++count;
    if (!setFrame(wave, frame, due ? amplitude : 0.0f)) return false;
  }
  return true;
}

bool sweep(CWave& wave, SynthesisType type, float amplitude) {
  const double rate = wave.sampleRate();
  const double highest = std::min(kHighestHz, rate / 2);
  const double seconds = wave.frames() / rate;
  for (int32_t frame = 0; frame < wave.frames(); ++frame) {
    const double t = static_cast<double>(frame) / wave.frames();
    const double cycles = sweepCycles(type, t, seconds, highest);
    const double phase = 2 * std::numbers::pi * (cycles - std::floor(cycles));
    if (!setFrame(wave, frame, amplitude * static_cast<float>(std::sin(phase)))) return false;
  }
  return true;
}

// ---- Tones ----------------------------------------------------------------------------------------------

constexpr double kSecondTone = 1.2;
constexpr double kSlowestHz = 0.001;

double sineAt(double hz, int64_t frame, double rate) {
  const double cycles = hz * static_cast<double>(frame) / rate;
  return std::sin(2 * std::numbers::pi * (cycles - std::floor(cycles)));
}

bool tones(CWave& wave, SynthesisType type, float amplitude, double hz) {
  const double rate = wave.sampleRate();
  for (int32_t frame = 0; frame < wave.frames(); ++frame) {
    double value = sineAt(hz, frame, rate);
    if (type == SynthesisType::twoTone) value = (value + sineAt(kSecondTone * hz, frame, rate)) / 2;
    if (!setFrame(wave, frame, amplitude * static_cast<float>(value))) return false;
  }
  return true;
}

constexpr double kDtmfRows[] = {697, 770, 852, 941};
constexpr double kDtmfColumns[] = {1209, 1336, 1477};
constexpr double kLongestNumber = 1e15;  // digits beyond are no longer those that were typed

struct KeyTones {
  double row, column;
};

// The keys stand as 123, 456, 789, and 0 in the middle below.
KeyTones tonesOf(char digit) {
  const int key = digit == '0' ? 10 : digit - '1';
  return {kDtmfRows[key / 3], kDtmfColumns[key % 3]};
}

bool dial(CWave& wave, float amplitude, double number) {
  const std::string digits = std::to_string(static_cast<int64_t>(number));
  const auto count = static_cast<int64_t>(digits.size());
  const double rate = wave.sampleRate();
  for (int32_t frame = 0; frame < wave.frames(); ++frame) {
    const int64_t i = frame * count / wave.frames();
    const int64_t start = (i * wave.frames() + count - 1) / count;
    const int64_t end = ((i + 1) * wave.frames() + count - 1) / count;
    const KeyTones key = tonesOf(digits[static_cast<size_t>(i)]);
    const bool pause = count > 1 && 2 * (frame - start) >= end - start;
    const double value = sineAt(key.row, frame - start, rate) + sineAt(key.column, frame - start, rate);
    if (!setFrame(wave, frame, pause ? 0.0f : amplitude * static_cast<float>(value / 2))) return false;
  }
  return true;
}

// ---- Channel by channel ---------------------------------------------------------------------------------

template <class Fill>
bool forActiveChannels(CWave& wave, Fill fill) {
  for (int c = 0; c < wave.channels(); ++c) {
    if (wave.isActive(c) && !fill(StridedSamples(wave, c))) return false;
  }
  return true;
}

bool cornered(CWave& wave, SynthesisType type, double amplitude, double hz) {
  // With these no sum of the first partials goes beyond ±1.
  constexpr double kBelowRinging = std::numbers::pi / 4;
  constexpr double kPulseLevel = 0.7;
  const auto [shape, level] = [&]() -> std::pair<CorneredWave, double> {
    if (type == SynthesisType::triangle) return {CorneredWave::triangle, 1.0};
    if (type == SynthesisType::sawtooth) return {CorneredWave::sawtooth, kBelowRinging};
    if (type == SynthesisType::pulse) return {CorneredWave::pulse, kPulseLevel};
    return {CorneredWave::square, kBelowRinging};
  }();
  return forActiveChannels(wave, [&, shape = shape, level = level](StridedSamples samples) {
    return fillCorneredWave(samples, shape, hz / wave.sampleRate(), level * amplitude);
  });
}

bool noise(CWave& wave, SynthesisType type, double amplitude, uint32_t seed) {
  NoiseColour colour = NoiseColour::white;
  if (type == SynthesisType::pinkNoise) colour = NoiseColour::pink;
  if (type == SynthesisType::brownNoise) colour = NoiseColour::brown;
  return forActiveChannels(wave, [&](StridedSamples samples) {
    return fillNoise(samples, colour, wave.sampleRate(), amplitude, seed++);
  });
}

bool usesFrequency(SynthesisType type) {
  return !isNoise(type) && type != SynthesisType::silence && type != SynthesisType::sweepLinear &&
         type != SynthesisType::sweepExponential;
}

}  // namespace

bool isNoise(SynthesisType type) {
  return type == SynthesisType::whiteNoise || type == SynthesisType::pinkNoise ||
         type == SynthesisType::brownNoise;
}

bool canSynthesize(SynthesisType type, double hz, double sampleRate) {
  if (!usesFrequency(type)) return true;
  if (type == SynthesisType::dtmf) {
    return hz >= 0 && hz < kLongestNumber && 2 * kDtmfColumns[2] < sampleRate;
  }
  const double highest = type == SynthesisType::twoTone ? kSecondTone * hz : hz;
  return hz >= kSlowestHz && 2 * highest < sampleRate;
}

bool synthesize(CWave& wave, SynthesisType type, float amplitude, double hz, uint32_t seed) {
  switch (type) {
    case SynthesisType::impulseTrain:
      return impulses(wave, amplitude, hz);
    case SynthesisType::sweepLinear:
    case SynthesisType::sweepExponential:
      return sweep(wave, type, amplitude);
    case SynthesisType::sine:
    case SynthesisType::twoTone:
      return tones(wave, type, amplitude, hz);
    case SynthesisType::dtmf:
      return dial(wave, amplitude, hz);
    case SynthesisType::square:
    case SynthesisType::triangle:
    case SynthesisType::sawtooth:
    case SynthesisType::pulse:
      return cornered(wave, type, amplitude, hz);
    case SynthesisType::whiteNoise:
    case SynthesisType::pinkNoise:
    case SynthesisType::brownNoise:
      return noise(wave, type, amplitude, seed);
    case SynthesisType::silence:
      break;
  }
  for (int32_t frame = 0; frame < wave.frames(); ++frame) {
    if (!setFrame(wave, frame, 0.0f)) return false;
  }
  return true;
}

}  // namespace plumetta
