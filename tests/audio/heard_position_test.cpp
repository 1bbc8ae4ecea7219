// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/heard_position.h"

#include <gtest/gtest.h>

namespace plumetta {
namespace {

TEST(HeardPosition, IsLateByTheQueueAndMovesEvenlyBetweenBlocks) {
  HeardPosition heard;
  heard.begin(10.0, 1000, 0.5);
  for (const double t : {10.0, 10.05}) heard.note(t, 1000);  // the same block, seen twice
  heard.note(10.1, 1200);
  heard.note(10.2, 1400);
  EXPECT_EQ(heard.at(10.3), 1000);
  EXPECT_NEAR(heard.at(10.55), 1100, 1e-6);
  EXPECT_NEAR(heard.at(10.6), 1200, 1e-6);
  EXPECT_NEAR(heard.at(10.675), 1350, 1e-6);
  EXPECT_EQ(heard.at(99), 1400);
}

TEST(HeardPosition, JumpsBackWithoutPassingWhatLiesBetween) {
  HeardPosition heard;
  heard.begin(0.0, 5000, 0.0);
  heard.note(0.1, 5200);
  heard.note(0.2, 100);  // the loop has begun anew
  heard.note(0.3, 300);
  EXPECT_EQ(heard.at(0.19), 5200);
  EXPECT_EQ(heard.at(0.2), 100);
  EXPECT_NEAR(heard.at(0.25), 200, 1e-6);
  heard.begin(1.0, 7, 0.25);  // another play forgets the one before
  EXPECT_EQ(heard.at(2.0), 7);
}

}  // namespace
}  // namespace plumetta
