// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/noise.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace plumetta {
namespace {

constexpr double kLowestHz = 5.0;
constexpr double kRms =
    0.2;  // leaves 14 dB for peaks; what lies beyond is cut, about one sample in a million
constexpr double kWhiteVariance = 1.0 / 3;  // of what is evenly spread over ±1

// White noise between ±1.
class WhiteNoise {
 public:
  explicit WhiteNoise(uint32_t seed) : random_(seed) {}
  double next() { return static_cast<int32_t>(random_()) / 2147483648.0; }

 private:
  std::mt19937 random_;
};

// Filters of the first order, one after the other.
class ColourFilter {
 public:
  ColourFilter(NoiseColour colour, double sampleRate) {
    if (colour == NoiseColour::brown) stages_.push_back({radius(kLowestHz, sampleRate), 0.0});
    if (colour != NoiseColour::pink) return;
    // Poles and zeros by turns, evenly on the scale of pitch, fall by 3 dB an octave: half the time by 6 dB.
    constexpr double kRatio = 2.5;
    for (double hz = kLowestHz; hz < sampleRate / 2; hz *= kRatio) {
      stages_.push_back({radius(hz, sampleRate), radius(hz * std::sqrt(kRatio), sampleRate)});
    }
  }

  double next(double x) {
    for (Stage& stage : stages_) {
      const double y = x + stage.pole * stage.lastOut - stage.zero * stage.lastIn;
      stage.lastIn = x;
      stage.lastOut = y;
      x = y;
    }
    return x;
  }

 private:
  struct Stage {
    double pole, zero;
    double lastIn = 0, lastOut = 0;
  };
  static double radius(double hz, double sampleRate) {
    return std::exp(-2 * std::numbers::pi * hz / sampleRate);
  }

  std::vector<Stage> stages_;
};

// By what the filter multiplies the power of white noise: the energy of its impulse response.
double powerGain(ColourFilter filter, int frames) {
  double energy = 0;
  for (int i = 0; i < frames; ++i) {
    const double y = filter.next(i == 0 ? 1.0 : 0.0);
    energy += y * y;
  }
  return energy;
}

}  // namespace

bool fillNoise(StridedSamples samples, NoiseColour colour, double sampleRate, double amplitude,
               uint32_t seed) {
  WhiteNoise white(seed);
  ColourFilter filter(colour, sampleRate);
  double gain = amplitude;
  if (colour != NoiseColour::white) {
    // Half a second is many times what the slowest stage remembers.
    const auto memory = static_cast<int>(std::clamp(sampleRate / 2, 1.0, 1e6));
    gain *= kRms / std::sqrt(kWhiteVariance * powerGain(filter, memory));
    for (int i = 0; i < memory; ++i) filter.next(white.next());
  }
  for (size_t i = 0; i < samples.frames(); ++i) {
    if (!samples.passed(i)) return false;
    samples[i] = static_cast<float>(std::clamp(gain * filter.next(white.next()), -amplitude, amplitude));
  }
  return true;
}

}  // namespace plumetta
