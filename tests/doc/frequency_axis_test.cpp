// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/frequency_axis.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace plumetta {
namespace {

std::string labelsOf(const FrequencyAxis& axis, double pixels) {
  std::string labels;
  for (const FrequencyTick& tick : frequencyTicks(axis, pixels, 40)) {
    EXPECT_GE(axis.fraction(tick.hz), -1e-9);
    EXPECT_LE(axis.fraction(tick.hz), 1 + 1e-9);
    if (!tick.label.empty()) labels += tick.label + " ";
  }
  return labels;
}

TEST(FrequencyAxis, LabelsAreRoundNumbersWithRoomBetween) {
  const struct {
    FrequencyAxis axis;
    double pixels;
    const char* labels;
  } cases[] = {
      {{20, 20000, true}, 600, "20 50 100 200 500 1k 2k 5k 10k 20k "},
      {{20, 22050, true}, 200, "100 1k 10k "},
      {{0, 22050, false}, 300, "0 5k 10k 15k 20k "},
      {{440, 444, false}, 200, "440 441 442 443 444 "},
      {{1000, 1001, true}, 100, "1k 1.0005k 1.001k "},
      {{900, 1900, true}, 200, "1k 1.5k "},
      {{20, 20, true}, 200, ""},
      {{20, 20000, true}, 0, ""},
  };
  for (const auto& [axis, pixels, labels] : cases) EXPECT_EQ(labelsOf(axis, pixels), labels);
}

TEST(FrequencyAxis, PlacesAreThereAndBack) {
  const FrequencyAxis log{20, 20000, true}, linear{0, 20000, false};
  EXPECT_DOUBLE_EQ(log.fraction(200), 1.0 / 3);
  EXPECT_DOUBLE_EQ(linear.fraction(5000), 0.25);
  EXPECT_EQ(log.fraction(0), -std::numeric_limits<double>::infinity());
  for (const double hz : {20.0, 333.0, 20000.0}) {
    EXPECT_NEAR(log.hz(log.fraction(hz)), hz, 1e-9);
    EXPECT_NEAR(linear.hz(linear.fraction(hz)), hz, 1e-9);
  }
}

TEST(FrequencyAxis, ZoomHoldsThePlaceAndStaysWithin) {
  for (const FrequencyAxis whole : {FrequencyAxis{20, 20000, true}, {0, 20000, false}}) {
    const FrequencyAxis near = whole.zoomed(0.3, 4, whole);
    EXPECT_NEAR(near.hz(0.3), whole.hz(0.3), 1e-9);
    EXPECT_NEAR(whole.fraction(near.highHz) - whole.fraction(near.lowHz), 0.25, 1e-12);
    const FrequencyAxis edge = near.moved(100, whole);
    EXPECT_NEAR(edge.highHz, whole.highHz, 1e-6);
    EXPECT_NEAR(whole.fraction(edge.lowHz), 0.75, 1e-12);
    const FrequencyAxis out = edge.zoomed(0.5, 1e-3, whole);
    EXPECT_NEAR(out.lowHz, whole.lowHz, 1e-6);
    EXPECT_NEAR(out.highHz, whole.highHz, 1e-6);
    const FrequencyAxis deepest = whole.zoomed(0.5, 1e9, whole);
    EXPECT_GT(deepest.highHz, deepest.lowHz);
  }
}

}  // namespace
}  // namespace plumetta
