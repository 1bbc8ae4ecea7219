// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/synthesis.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <numbers>

#include "dsp/noise.h"
#include "support/waves.h"

namespace plumetta {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr int kFrames = 4096;

std::unique_ptr<CWave> silent(int channels, int32_t frames, uint32_t rate) {
  auto wave = std::make_unique<CWave>();
  wave->create(rate, channels, 32, frames, kFormatFloat);
  return wave;
}

// Amplitudes of the partials of kFrames frames, plainly by their definition.
std::vector<double> partials(const CWave& wave, int32_t first = 0, bool hann = false) {
  std::vector<double> cosines, amplitudes;
  for (int i = 0; i < kFrames; ++i) cosines.push_back(std::cos(2 * kPi * i / kFrames));
  for (int k = 0; k < kFrames / 2; ++k) {
    double re = 0, im = 0;
    for (int i = 0; i < kFrames; ++i) {
      const double x = wave.sample(first + i, 0) * (hann ? 1 - cosines[static_cast<size_t>(i)] : 1.0);
      re += x * cosines[static_cast<size_t>(k * i % kFrames)];
      im += x * cosines[static_cast<size_t>((k * i + kFrames / 4) % kFrames)];
    }
    amplitudes.push_back(std::hypot(re, im) * (k == 0 ? 1 : 2) / kFrames);
  }
  return amplitudes;
}

// A frame a second of rate lasts, so that partial k is k Hz and a whole number of cycles fits.
TEST(Synthesis, WavesWithCornersHaveTheirPartialsAndNoOthers) {
  struct Case {
    SynthesisType type;
    double (*partial)(int k);
  };
  const Case cases[] = {
      {SynthesisType::square, [](int k) { return k % 2 == 1 ? 1.0 / k : 0.0; }},
      {SynthesisType::triangle, [](int k) { return k % 2 == 1 ? 8 / (kPi * kPi * k * k) : 0.0; }},
      {SynthesisType::sawtooth, [](int k) { return k > 0 ? 0.5 / k : 0.0; }},
      {SynthesisType::pulse,
       [](int k) { return 0.7 * (k > 0 ? 4 / (kPi * k) * std::fabs(std::sin(kPi * k / 4)) : 0.5); }},
  };
  constexpr double kStillAliased = 3e-5;  // -90 dB
  for (const Case& one : cases) {
    for (const int hz : {37, 331, 1277}) {
      auto wave = silent(1, kFrames, kFrames);
      synthesize(*wave, one.type, 0.5f, hz);
      const auto found = partials(*wave);
      for (int k = 0; k < kFrames / 2; ++k) {
        const bool own = k % hz == 0;
        if (own && k > 0.45 * kFrames) continue;
        EXPECT_NEAR(found[static_cast<size_t>(k)], own ? 0.5 * one.partial(k / hz) : 0.0, kStillAliased)
            << static_cast<int>(one.type) << " of " << hz << " Hz at " << k;
      }
      for (int f = 0; f < kFrames; ++f) ASSERT_LE(std::fabs(wave->sample(f, 0)), 0.5f);
    }
  }
}

TEST(Synthesis, TonesAndImpulsesStandWhereTheyAreDue) {
  auto wave = silent(2, 4000, 8000);
  wave->setActive(ActiveOperation::off, 1);
  synthesize(*wave, SynthesisType::sine, 0.5f, 1000);
  EXPECT_NEAR(wave->sample(1, 0), 0.5 * std::sqrt(0.5), 1e-7);
  EXPECT_NEAR(wave->sample(3998, 0), -0.5, 1e-7);
  synthesize(*wave, SynthesisType::twoTone, 1.0f, 500);
  EXPECT_NEAR(wave->sample(7, 0), (std::sin(7 * kPi / 8) + std::sin(7 * kPi * 0.15)) / 2, 1e-6);
  // "15": each key for a half of its half; 697 and 1209 Hz, then 770 and 1336 Hz.
  synthesize(*wave, SynthesisType::dtmf, 1.0f, 15);
  EXPECT_NEAR(wave->sample(9, 0), (std::sin(18 * kPi * 697 / 8000) + std::sin(18 * kPi * 1209 / 8000)) / 2,
              1e-6);
  EXPECT_EQ(wave->sample(1000, 0), 0.0f);
  EXPECT_NEAR(wave->sample(2999, 0),
              (std::sin(1998 * kPi * 770 / 8000) + std::sin(1998 * kPi * 1336 / 8000)) / 2, 1e-6);
  // 3 Hz: every 2666 2/3 frames.
  synthesize(*wave, SynthesisType::impulseTrain, 1.0f, 3);
  for (int f = 0; f < 4000; ++f) ASSERT_EQ(wave->sample(f, 0), f == 0 || f == 2667 ? 1.0f : 0.0f) << f;
  for (int f = 0; f < 4000; ++f) ASSERT_EQ(wave->sample(f, 1), 0.0f);
}

TEST(Synthesis, FrequenciesThatTheRateCannotHoldAreRefused) {
  EXPECT_TRUE(canSynthesize(SynthesisType::sine, 3999.9, 8000));
  EXPECT_FALSE(canSynthesize(SynthesisType::sine, 4000, 8000));
  EXPECT_FALSE(canSynthesize(SynthesisType::square, 0, 8000));
  EXPECT_FALSE(canSynthesize(SynthesisType::twoTone, 3400, 8000));
  EXPECT_FALSE(canSynthesize(SynthesisType::dtmf, 5, 2954));
  EXPECT_TRUE(canSynthesize(SynthesisType::pinkNoise, 0, 8));
}

TEST(Noise, PowerFallsWithTheOctavesAsItsColourSays) {
  constexpr int kBlocks = 12;
  struct Case {
    NoiseColour colour;
    double perOctaveDb, rms;
  };
  for (const Case& one : {Case{NoiseColour::white, 3.01, std::sqrt(1.0 / 3)},
                          {NoiseColour::pink, 0, 0.2},
                          {NoiseColour::brown, -3.01, 0.2}}) {
    auto wave = silent(1, kBlocks * kFrames, 8192);
    fillNoise(StridedSamples(*wave, 0), one.colour, 8192, 0.5, 7);
    double squares = 0;
    for (int f = 0; f < wave->frames(); ++f) squares += std::pow(wave->sample(f, 0), 2.0);
    EXPECT_NEAR(std::sqrt(squares / wave->frames()), 0.5 * one.rms, 0.1 * one.rms);
    double octaves[5] = {};  // from 64 Hz, 32 partials, on
    for (int block = 0; block < kBlocks; ++block) {
      const auto found = partials(*wave, block * kFrames, true);
      for (size_t k = 32; k < 32 << 5; ++k) octaves[std::bit_width(k) - 6] += found[k] * found[k];
    }
    for (int octave = 1; octave < 5; ++octave) {
      EXPECT_NEAR(10 * std::log10(octaves[octave] / octaves[0]), octave * one.perOctaveDb, 0.8) << octave;
    }
  }
  auto wave = silent(2, 100, 8000);
  synthesize(*wave, SynthesisType::whiteNoise, 1.0f, 0, 3);
  EXPECT_NE(wave->sample(50, 0), wave->sample(50, 1));
}

}  // namespace
}  // namespace plumetta
