// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/zero_crossing.h"

#include <gtest/gtest.h>

#include <limits>

namespace plumetta {
namespace {

void fill(CWave& wave, const std::vector<float>& left, const std::vector<float>& right = {}) {
  const int channels = right.empty() ? 1 : 2;
  wave.create(8000, channels, 32, static_cast<int32_t>(left.size()), kFormatFloat);
  for (size_t f = 0; f < left.size(); ++f) {
    wave.setSample(static_cast<int32_t>(f), 0, left[f]);
    if (channels == 2) wave.setSample(static_cast<int32_t>(f), 1, right[f]);
  }
}

TEST(ZeroCrossing, IsTheNearestOneWithinReach) {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  const struct {
    const char* what;
    std::vector<float> samples;
    int32_t frame, reach, nearest;
  } cases[] = {
      {"the side that is nearer to zero", {3, 2, -1, -3}, 0, 9, 2},
      {"before the frame", {1, -2, -3, -4, -5}, 3, 9, 0},
      {"a zero itself", {1, 1, 0, 1, 1}, 4, 9, 2},
      {"the frame itself", {5, -1, 1, 5}, 2, 9, 2},
      {"out of reach", {1, 1, 1, 1, -1}, 0, 2, 0},
      {"just in reach", {1, 1, 1, 1, -1}, 0, 3, 3},
      {"none", {1, 2, 3}, 1, 9, 1},
      {"what is not a number", {kNan, 1, kNan, -1}, 1, 9, 1},
      {"an empty file", {}, 0, 9, 0},
      {"a long reach", {1, 2}, 1, std::numeric_limits<int32_t>::max() / 1024, 1},
  };
  for (const auto& c : cases) {
    CWave wave;
    fill(wave, c.samples);
    EXPECT_EQ(nearestZeroCrossing(wave, c.frame, c.reach), c.nearest) << c.what;
  }
}

TEST(ZeroCrossing, ListensToTheActiveChannelsTogether) {
  CWave wave;
  fill(wave, {1, 1, 1, 1}, {3, -0.5f, -3, -3});
  EXPECT_EQ(nearestZeroCrossing(wave, 0, 9), 1) << "4 0.5 -2 -2";
  wave.setActive(ActiveOperation::solo, 0);
  EXPECT_EQ(nearestZeroCrossing(wave, 0, 9), 0) << "1 1 1 1";
}

}  // namespace
}  // namespace plumetta
