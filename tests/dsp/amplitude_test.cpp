// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/amplitude.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "dsp/bit_depth.h"
#include "dsp/synthesis.h"
#include "support/waves.h"

namespace plumetta {
namespace {

// A buffer of these samples, one list a channel.
std::unique_ptr<CWave> waveOf(const std::vector<std::vector<float>>& channels) {
  auto wave = std::make_unique<CWave>();
  const auto frames = static_cast<int32_t>(channels[0].size());
  wave->create(8000, static_cast<int>(channels.size()), 32, frames, kFormatFloat);
  for (size_t c = 0; c < channels.size(); ++c) {
    for (int32_t f = 0; f < frames; ++f)
      wave->setSample(f, static_cast<int>(c), channels[c][static_cast<size_t>(f)]);
  }
  return wave;
}

std::vector<float> samplesOf(const CWave& wave, int channel = 0) {
  std::vector<float> samples;
  for (int32_t f = 0; f < wave.frames(); ++f) samples.push_back(wave.sample(f, channel));
  return samples;
}

TEST(Fade, RunsOnOverItsBlocks) {
  constexpr int kLength = 3001;
  for (const auto direction : {FadeDirection::in, FadeDirection::out}) {
    auto wave = waveOf({std::vector<float>(kLength + 20, 1.0f), std::vector<float>(kLength + 20, 1.0f)});
    wave->setActive(ActiveOperation::off, 1);
    ASSERT_TRUE(fade(*wave, {kLength + 9, 10}, FadeCurve::square, direction));
    for (int i = 0; i < kLength; ++i) {
      const double x =
          static_cast<double>(direction == FadeDirection::in ? i : kLength - 1 - i) / (kLength - 1);
      ASSERT_NEAR(wave->sample(10 + i, 0), x * x, 6e-8) << i;
      ASSERT_EQ(wave->sample(10 + i, 1), 1.0f);
    }
    EXPECT_EQ(wave->sample(9, 0), 1.0f);
    EXPECT_EQ(wave->sample(kLength + 10, 0), 1.0f);
  }
}

TEST(Normalize, PassesOverWhatIsNotANumber) {
  auto damaged = waveOf({{std::numeric_limits<float>::quiet_NaN(), 0.5f}});
  normalize(*damaged, {0, 1}, 0.0);
  EXPECT_EQ(damaged->sample(1, 0), 1.0f);
}

TEST(TestSignals, ImpulsesAndSweeps) {
  auto wave = waveOf({std::vector<float>(20000, 0.3f), std::vector<float>(20000, 0.3f)});
  wave->setActive(ActiveOperation::solo, 1);
  synthesize(*wave, SynthesisType::impulseTrain, 1.0f);
  double sum = 0;
  for (int f = 0; f < 20000; ++f) sum += wave->sample(f, 1);
  EXPECT_EQ(sum, 3.0);  // at 0, 1 and 2 seconds
  EXPECT_EQ(wave->sample(8000, 1), 1.0f);
  for (const auto type : {SynthesisType::sweepLinear, SynthesisType::sweepExponential}) {
    synthesize(*wave, type, 0.5f);
    const auto crossings = [&](int from, int to) {
      int count = 0;
      for (int f = from + 1; f < to; ++f) count += (wave->sample(f, 1) >= 0) != (wave->sample(f - 1, 1) >= 0);
      return count;
    };
    EXPECT_LT(crossings(0, 200), 60);
    EXPECT_GT(crossings(19800, 20000), 180);  // close to half the rate
  }
}

TEST(BitDepth, OnlyWhatTheWidthHoldsIsLeft) {
  auto wave = waveOf({{0.5f, -2.0f, 0.00001f, std::numeric_limits<float>::quiet_NaN()}});
  quantize(*wave, 24);
  EXPECT_EQ(wave->sample(1, 0), -2.0f);
  quantize(*wave, 8);
  EXPECT_EQ(samplesOf(*wave), (std::vector<float>{64 / 127.0f, -1.0f, 0.0f, 0.0f}));
}

TEST(Dither, IsUniformUncorrelatedAndNewEachTime) {
  constexpr int kFrames = 100000;
  const auto noise = [](int bits, DitherType type) {
    auto wave = waveOf({std::vector<float>(kFrames, 0.0f)});
    addDither(*wave, bits, type);
    return samplesOf(*wave);
  };
  const auto a = noise(8, DitherType::halfStep);
  EXPECT_NE(a, noise(8, DitherType::halfStep));
  double sum = 0, squares = 0, neighbours = 0;
  float peak = 0;
  for (int i = 1; i < kFrames; ++i) {
    sum += a[i];
    squares += a[i] * a[i];
    neighbours += a[i] * a[i - 1];
    peak = std::max(peak, std::fabs(a[i]));
  }
  EXPECT_NEAR(peak, 0x1p-8f, 1e-5);
  EXPECT_NEAR(sum / kFrames, 0.0, 5e-5);
  EXPECT_NEAR(squares / kFrames, 0x1p-16 / 3, 1e-7);  // a uniform distribution's
  EXPECT_NEAR(neighbours / squares, 0.0, 0.02);
  const auto full = noise(16, DitherType::fullStep);
  EXPECT_NEAR(*std::max_element(full.begin(), full.end()), 0x1p-15f, 1e-7);
  EXPECT_EQ(noise(24, DitherType::fullStep), std::vector<float>(kFrames, 0.0f));
}

}  // namespace
}  // namespace plumetta
