// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/gapper.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace plumetta {
namespace {

// 10 Hz at 8000 frames a second: 400 frames open, 400 closed.
TEST(Gate, OpensAndClosesByItsEdges) {
  const auto gated = [](Gate gate) {
    auto wave = std::make_unique<CWave>();
    wave->create(8000, 1, 32, 8000, kFormatFloat);
    std::fill_n(wave->samples(), wave->sampleCount(), 1.0f);
    applyGate(*wave, gate);
    return wave;
  };
  const auto linear = gated({GateEdge::linear, 10, 10, 0.5, 0.25});
  for (int k = 0; k < 800; ++k) {
    const double expected = k < 200 ? k / 200.0 : k < 300 ? 1.0 : k < 400 ? (400 - k) / 100.0 : 0.0;
    ASSERT_NEAR(linear->sample(2400 + k, 0), expected, 1e-5) << k;
  }
  // From 2 to 6 Hz within a second: the fourth cycle begins when 2t + 2t² = 3.
  const auto rising = gated({GateEdge::linear, 2, 6, 0.1, 0.1});
  const int fourth = static_cast<int>(8000 * (std::sqrt(7.0) - 1) / 2);
  EXPECT_EQ(rising->sample(fourth - 100, 0), 0.0f);
  EXPECT_EQ(rising->sample(fourth, 0), 0.0f);
  EXPECT_GT(rising->sample(fourth + 2, 0), 0.0f);
}

}  // namespace
}  // namespace plumetta
