// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/sonogram.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace plumetta {
namespace {

constexpr int kSize = 256;

// Column f / columnFrames has a sine at line 16 + 8 × column % 8 in channel 0, half as loud in channel 1.
double tone(int32_t frame, int channel, int columnFrames) {
  const int line = 16 + 8 * (frame / columnFrames % 8);
  return std::sin(2 * std::numbers::pi * line * frame / kSize) / (channel + 1);
}

void fill(CWave& wave, int columns, int columnFrames) {
  wave.create(8000, 2, 32, int64_t{columns} * columnFrames, kFormatFloat);
  for (int32_t f = 0; f < wave.frames(); ++f) {
    for (int c = 0; c < 2; ++c) wave.setSample(f, c, static_cast<float>(tone(f, c, columnFrames)));
  }
}

TEST(Sonogram, EachColumnShowsWhatSoundsInIt) {
  CWave wave;
  fill(wave, 6, 4 * kSize);
  for (int kind = 0; kind < kWindowKinds; ++kind) {
    for (const bool together : {false, true}) {
      const SonogramPlan plan{0.0,    4.0 * kSize, 6, 4, {kSize, static_cast<WindowKind>(kind)},
                              {0, 1}, together};
      Sonogram sonogram(wave, plan);
      while (sonogram.advance(wave)) {
      }
      EXPECT_EQ(sonogram.hzPerLine() * 32, 1000.0);
      for (int column = 0; column < 6; ++column) {
        const auto line = static_cast<size_t>(16 + 8 * column);
        // Together is the mean of 1 and a quarter.
        EXPECT_NEAR(sonogram.amplitude(0, column, line), together ? std::sqrt(0.625) : 1.0, 1e-3) << kind;
        EXPECT_LT(sonogram.amplitude(0, column, line + 40), 1e-3) << windowName(kind);
        EXPECT_NEAR(sonogram.amplitude(plan.planes() - 1, column, line), together ? std::sqrt(0.625) : 0.5,
                    1e-3);
      }
    }
  }
}

// Columns of 64 frames of a constant that begins at frame 100: a block of 256 stands about a column's middle.
TEST(Sonogram, BlocksStandAboutTheMiddleAndBeyondTheEndsIsSilence) {
  CWave wave;
  wave.create(8000, 1, 32, 228, kFormatFloat);
  for (int32_t f = 100; f < 228; ++f) wave.setSample(f, 0, 1.0f);
  Sonogram sonogram(wave, {-320.0, 64.0, 12, 1, {kSize, WindowKind::rectangular}, {0}, false});
  while (sonogram.advance(wave)) {
  }
  // Middles at -288, -224 ... 416; a block reaches from 128 frames before to 127 behind.
  const int ones[] = {0, 0, 0, 0, 0, 60, 124, 128, 128, 68, 4, 0};
  for (int column = 0; column < 12; ++column) {
    EXPECT_NEAR(sonogram.amplitude(0, column, 0), ones[column] / 256.0, 1e-6) << column;
  }
}

TEST(Sonogram, HasSomethingOfEveryColumnBeforeAllOfAny) {
  CWave wave;
  const int columns = 6000;
  fill(wave, columns, 2 * kSize);
  // The second half of each column is silent: half of the power.
  for (int32_t f = 0; f < wave.frames(); ++f) {
    if (f / kSize % 2 == 1) wave.setSample(f, 1, 0.0f);
  }
  Sonogram sonogram(wave, {0.0, 2.0 * kSize, columns, 2, {kSize, WindowKind::rectangular}, {1}, false});
  const auto level = [&](int column) {
    return sonogram.amplitude(0, column, static_cast<size_t>(16 + 8 * (column % 8)));
  };
  EXPECT_TRUE(sonogram.advance(wave));
  EXPECT_FALSE(sonogram.overviewDone());
  EXPECT_NEAR(level(0), 0.5, 1e-6);
  EXPECT_EQ(level(columns - 1), 0.0);
  while (!sonogram.overviewDone()) EXPECT_TRUE(sonogram.advance(wave));
  EXPECT_LE(sonogram.fractionDone(), 0.5);
  EXPECT_NEAR(level(columns - 1), 0.5, 1e-6);
  while (sonogram.advance(wave)) {
  }
  for (const int column : {0, 1, columns - 1}) EXPECT_NEAR(level(column), 0.5 * std::sqrt(0.5), 1e-6);
}

}  // namespace
}  // namespace plumetta
