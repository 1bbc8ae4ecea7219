// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/peak_pyramid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace plumetta {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

void fillNoise(CWave& wave, int channels, int32_t frames, unsigned seed) {
  ASSERT_TRUE(wave.create(44100, channels, 16, std::max(frames, 1), kFormatPcm));
  ASSERT_TRUE(wave.resize(frames, channels));
  wave.setLayout(channels, frames);
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> level(-1.2f, 1.2f);
  for (size_t i = 0; i < wave.sampleCount(); ++i) wave.samples()[i] = level(random);
}

// The frames that lie in [from, to), taken one by one.
PeakColumn bruteForce(const CWave& wave, int channel, int64_t from, int64_t to) {
  PeakColumn column{std::numeric_limits<float>::max(), std::numeric_limits<float>::lowest(), 0};
  double energy = 0;
  bool any = false;
  from = std::max<int64_t>(from, 0);
  to = std::min<int64_t>(to, wave.frames());
  for (int64_t f = from; f < to; ++f) {
    const float x = wave.sample(static_cast<int32_t>(f), channel);
    if (std::isnan(x)) continue;
    any = true;
    column.min = std::min(column.min, x);
    column.max = std::max(column.max, x);
    energy += static_cast<double>(x) * x;
  }
  if (!any) return {};
  column.rms = static_cast<float>(std::sqrt(energy / static_cast<double>(to - from)));
  return column;
}

void expectNear(const PeakColumn& actual, const PeakColumn& expected, const std::string& where) {
  EXPECT_EQ(actual.min, expected.min) << where;
  EXPECT_EQ(actual.max, expected.max) << where;
  EXPECT_NEAR(actual.rms, expected.rms, 2e-5) << where;
}

// Compares every column of a window whose edges fall on bins with the same frames taken one by one.
void expectWindow(const CWave& wave, const PeakPyramid& peaks, int64_t first, int64_t framesPerPixel) {
  first = std::min<int64_t>(first, wave.frames());
  std::vector<PeakColumn> columns(static_cast<size_t>((wave.frames() - first) / framesPerPixel) + 3);
  for (int channel = 0; channel < wave.channels(); ++channel) {
    peaks.columns(wave, channel, static_cast<double>(first), static_cast<double>(framesPerPixel), columns);
    for (size_t i = 0; i < columns.size(); ++i) {
      const int64_t from = first + static_cast<int64_t>(i) * framesPerPixel;
      expectNear(columns[i], bruteForce(wave, channel, from, from + framesPerPixel),
                 "channel " + std::to_string(channel) + " column " + std::to_string(i) + " of " +
                     std::to_string(framesPerPixel));
    }
  }
}

struct Shape {
  int channels;
  int32_t frames;
};

class PeakPyramidShapes : public testing::TestWithParam<Shape> {};

TEST_P(PeakPyramidShapes, agreesWithEverySampleAtEveryZoom) {
  CWave wave;
  fillNoise(wave, GetParam().channels, GetParam().frames, 7);
  PeakPyramid peaks;
  peaks.rebuild(wave);
  for (const int64_t framesPerPixel : {1, 3, 200, 255}) expectWindow(wave, peaks, 5, framesPerPixel);
  for (const int64_t framesPerPixel : {256, 512, 1024, 4096, 5120, 16384}) {
    expectWindow(wave, peaks, 0, framesPerPixel);
    expectWindow(wave, peaks, framesPerPixel, framesPerPixel);
  }
}

INSTANTIATE_TEST_SUITE_P(All, PeakPyramidShapes,
                         testing::Values(Shape{1, 0}, Shape{1, 1}, Shape{1, 255}, Shape{1, 70001},
                                         Shape{2, 256}, Shape{2, 66049}, Shape{3, 5003}, Shape{5, 1025},
                                         Shape{7, 4097}, Shape{16, 4099}));

TEST(PeakPyramid, passesOverWhatIsNotANumber) {
  CWave wave;
  fillNoise(wave, 2, 3000, 11);
  for (int32_t f = 10; f < 60; ++f) wave.setSample(f, 1, kNan);
  for (int32_t f = 256; f < 512; ++f) wave.setSample(f, 0, kNan);
  wave.setSample(2999, 0, kNan);
  PeakPyramid peaks;
  peaks.rebuild(wave);
  for (const int64_t framesPerPixel : {1, 64, 256, 1024}) expectWindow(wave, peaks, 0, framesPerPixel);
}

TEST(PeakPyramid, followsAChangeFromAFrameOn) {
  struct Case {
    int32_t before, after, changed;
  };
  for (const auto& [before, after, changed] : {Case{9000, 9000, 0},
                                               {9000, 9000, 8999},
                                               {9000, 9000, 5000},
                                               {9000, 20001, 9000},
                                               {300, 70000, 300},
                                               {9000, 257, 257},
                                               {9000, 100, 90},
                                               {9000, 0, 0},
                                               {0, 9000, 0}}) {
    CWave wave;
    fillNoise(wave, 2, before, 1);
    PeakPyramid peaks;
    peaks.rebuild(wave);
    CWave changedWave;
    fillNoise(changedWave, 2, after, 2);
    for (size_t i = 0; i < static_cast<size_t>(std::min({changed, before, after})) * 2; ++i) {
      changedWave.samples()[i] = wave.samples()[i];
    }
    peaks.rebuildFrom(changedWave, changed);
    SCOPED_TRACE(std::to_string(before) + " to " + std::to_string(after));
    for (const int64_t framesPerPixel : {100, 256, 1024, 4096, 65536}) {
      expectWindow(changedWave, peaks, 0, framesPerPixel);
    }
  }
}

TEST(PeakPyramid, startsAgainForAnotherLayout) {
  CWave wave;
  fillNoise(wave, 2, 4000, 1);
  PeakPyramid peaks;
  peaks.rebuild(wave);
  fillNoise(wave, 3, 4000, 2);
  peaks.rebuildFrom(wave, 3999);
  expectWindow(wave, peaks, 0, 256);
}

// One loud frame must show in exactly one column, wherever the columns' edges fall.
TEST(PeakPyramid, losesNoFrameBetweenColumns) {
  CWave wave;
  ASSERT_TRUE(wave.create(44100, 1, 16, 100000, kFormatPcm));
  PeakPyramid peaks;
  for (const int32_t loud : {0, 255, 256, 4095, 50000, 99999}) {
    wave.setSample(loud, 0, 1.0f);
    peaks.rebuild(wave);
    for (const double framesPerPixel : {1.0, 1.7, 30.3, 255.9, 256.1, 700.7, 1500.5, 9000.1}) {
      std::vector<PeakColumn> columns(static_cast<size_t>(100000 / framesPerPixel) + 2);
      peaks.columns(wave, 0, 0, framesPerPixel, columns);
      int shown = 0;
      for (const PeakColumn& column : columns) shown += column.max == 1.0f;
      EXPECT_EQ(shown, 1) << loud << " at " << framesPerPixel;
    }
    wave.setSample(loud, 0, 0.0f);
  }
}

TEST(PeakPyramid, takesLittleMemory) {
  CWave wave;
  ASSERT_TRUE(wave.create(44100, 2, 16, 1000000, kFormatPcm));
  PeakPyramid peaks;
  peaks.rebuild(wave);
  EXPECT_LE(peaks.memoryBytes(), wave.sampleCount() * sizeof(float) / 50);
}

}  // namespace
}  // namespace plumetta
