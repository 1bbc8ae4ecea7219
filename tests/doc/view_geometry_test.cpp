// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/view_geometry.h"

#include <gtest/gtest.h>

#include "doc/ruler_ticks.h"

namespace plumetta {
namespace {

TEST(FrameScale, fitsTheWholeFileOnTheWindow) {
  const FrameScale scale = shownScale(1234, 0, 100001, 1001);
  EXPECT_DOUBLE_EQ(scale.x(0), 0);
  EXPECT_DOUBLE_EQ(scale.x(100000), 1000);
  EXPECT_TRUE(showsAll(scale, 100001, 1001));
  // No file is too small, and no window too narrow.
  for (const int32_t frames : {0, 1, 2}) {
    for (const int width : {0, 1, 500}) EXPECT_GT(fitScale(frames, width).framesPerPixel, 0);
  }
}

TEST(FrameScale, isBroughtIntoTheFile) {
  struct Case {
    double first, framesPerPixel, expectedFirst, expectedZoom;
  };
  // 10001 frames on 101 pixels: at 10 frames a pixel, 1000 frames are seen at a time.
  for (const auto& [first, zoom, expectedFirst, expectedZoom] : {Case{500, 10, 500, 10},
                                                                 {-3, 10, 0, 10},
                                                                 {9500, 10, 9000, 10},
                                                                 {500, 100, 0, 100},
                                                                 {500, 1e9, 0, 100},
                                                                 {500, -1, 0, 100},
                                                                 {500, 1e-9, 500, kClosestZoom},
                                                                 {0.0 / 0.0, 10, 0, 100},
                                                                 {5, 0.0 / 0.0, 0, 100}}) {
    const FrameScale scale = shownScale(first, zoom, 10001, 101);
    EXPECT_DOUBLE_EQ(scale.first, expectedFirst) << first << " " << zoom;
    EXPECT_DOUBLE_EQ(scale.framesPerPixel, expectedZoom) << first << " " << zoom;
  }
}

TEST(FrameScale, zoomsAboutThePointer) {
  FrameScale scale = shownScale(20000, 16, 1000000, 1001);
  for (const double factor : {2.0, 2.0, 0.5, 8.0}) {
    const double held = scale.frame(300);
    scale = zoomedAbout(scale, 300, factor, 1000000, 1001);
    EXPECT_NEAR(scale.frame(300), held, 1e-6);
  }
  EXPECT_DOUBLE_EQ(scale.framesPerPixel, 1);
  scale = zoomedAbout(scale, 300, 1e9, 1000000, 1001);
  EXPECT_DOUBLE_EQ(scale.framesPerPixel, kClosestZoom);
  EXPECT_TRUE(showsAll(zoomedAbout(scale, 300, 1e-12, 1000000, 1001), 1000000, 1001));
  // A file that is smaller than the closest zoom shows stays as it is.
  const FrameScale tiny = fitScale(2, 1001);
  EXPECT_EQ(zoomedAbout(tiny, 10, 2, 2, 1001), tiny);
}

TEST(FrameScale, followsAFrameOutOfTheWindow) {
  const FrameScale scale{1000, 1};  // frames 1000 to 1100
  EXPECT_DOUBLE_EQ(showing(scale, 1050, 10000, 101).first, 1000);
  EXPECT_DOUBLE_EQ(showing(scale, 990, 10000, 101).first, 990);
  EXPECT_DOUBLE_EQ(showing(scale, 1110, 10000, 101).first, 1010);
  EXPECT_DOUBLE_EQ(showing(scale, 5000, 10000, 101).first, 4975);
  EXPECT_DOUBLE_EQ(showing(scale, 9999, 10000, 101).first, 9899);
}

TEST(FrameScale, turnsThePageWithPlayback) {
  const FrameScale scale{1000, 1};  // frames 1000 to 1100
  const struct {
    double before, now, first;
  } cases[] = {{1099, 1100, 1000},  // still in sight
               {1099, 1110, 1105},  // forwards
               {1005, 995, 900},    // back by winding
               {1090, 990, 985},    // back by a loop
               {1200, 1210, 1000},  // scrolled away by hand
               {1099, 9990, 9899},  // the end of the file
               {1010, 2, 0}};
  for (const auto& [before, now, first] : cases) {
    EXPECT_DOUBLE_EQ(following(scale, before, now, 10000, 101).first, first) << before << " to " << now;
  }
}

TEST(FrameScale, findsTheNearerEdge) {
  const FrameScale scale{0, 10};
  EXPECT_EQ(edgeAt(scale, 100, 500, 12, 4), RangeEdge::lower);
  EXPECT_EQ(edgeAt(scale, 100, 500, 47, 4), RangeEdge::upper);
  EXPECT_EQ(edgeAt(scale, 100, 500, 30, 4), std::nullopt);
  EXPECT_EQ(edgeAt(scale, 100, 120, 9, 4), RangeEdge::lower);
  EXPECT_EQ(edgeAt(scale, 100, 100, 9, 4), RangeEdge::lower);
  EXPECT_EQ(edgeAt(scale, 100, 100, 11, 4), RangeEdge::upper);
}

TEST(LaneLayout, dividesTheHeightWithoutLoss) {
  for (const int lanes : {1, 2, 3, 16}) {
    const LaneLayout layout{lanes, 301, 1};
    EXPECT_EQ(layout.top(0), 0);
    EXPECT_EQ(layout.top(lanes - 1) + layout.laneHeight(lanes - 1), 301);
    for (int lane = 0; lane < lanes; ++lane) {
      EXPECT_EQ(layout.laneAt(layout.top(lane)), lane);
      EXPECT_EQ(layout.laneAt(layout.top(lane) + layout.laneHeight(lane) - 1), lane);
    }
    EXPECT_EQ(layout.laneAt(-1), std::nullopt);
    EXPECT_EQ(layout.laneAt(301), std::nullopt);
  }
}

TEST(RulerTicks, countInStepsOfTheClock) {
  struct Case {
    double seconds;  // at least between labels
    double step;
    int decimals;
  };
  constexpr uint32_t kRate = 48000;
  for (const auto& [seconds, step, decimals] : {Case{0.00009, 0.0001, 4},
                                                {0.0011, 0.002, 3},
                                                {0.03, 0.05, 2},
                                                {0.2, 0.2, 1},
                                                {0.5, 0.5, 1},
                                                {0.6, 1, 0},
                                                {3, 5, 0},
                                                {11, 15, 0},
                                                {45, 60, 0},
                                                {700, 900, 0},
                                                {4000, 7200, 0},
                                                {30000, 36000, 0}}) {
    const TickSpacing ticks = timeTicks(seconds * kRate / 80, kRate, 80);
    EXPECT_NEAR(ticks.major, step * kRate, 1e-6 * step * kRate) << seconds;
    EXPECT_EQ(ticks.timeDecimals, decimals) << seconds;
  }
  EXPECT_DOUBLE_EQ(frameTicks(1.0 / 48, 80).major, 2);
  EXPECT_DOUBLE_EQ(frameTicks(100, 80).major, 10000);
  EXPECT_DOUBLE_EQ(frameTicks(0.001, 80).major, 1);
}

TEST(RulerTicks, countAndWriteInTheFormatThatIsChosen) {
  const struct {
    TimeFormat format;
    double major;  // frames, for labels at least 20000 frames apart at 48 kHz
    const char* position;
    const char* label;  // of the second tick
  } cases[] = {
      {kTimeSamples, 20000, "60 000", "20 000"},
      {kTimeSeconds, 24000, "1.2500", "0.5"},
      {kTimeMilliseconds, 24000, "1 250.0", "500"},
      {kTimeClock, 24000, "0:00:01.250", "0:00:00.5"},
  };
  for (const auto& c : cases) {
    const TickSpacing ticks = ticksIn(c.format, 200, 48000, 100);
    EXPECT_DOUBLE_EQ(ticks.major, c.major) << c.format;
    EXPECT_EQ(positionIn(c.format, ticks.major, 48000, ticks.timeDecimals), c.label);
    EXPECT_EQ(positionIn(c.format, 60000, 48000), c.position);
  }
  EXPECT_DOUBLE_EQ(ticksIn(kTimeSeconds, 48000 * 0.15, 48000, 100).major, 20 * 48000) << "no minutes";
  EXPECT_EQ(positionIn(kTimeSeconds, 59.99996 * 48000, 48000), "60.0000");
}

TEST(Selections, AreLengthenedAndShortened) {
  const struct {
    int32_t lower, upper;
    double factor;
    int32_t result;
  } cases[] = {{10, 19, 2, 29},   {10, 29, 0.5, 19},  {10, 19, 1000, 99}, {10, 19, 1e300, 99},
               {10, 12, 0.1, 11}, {10, 12, 1e-9, 11}, {90, 99, 2, 99},    {0, 2, 1.5, 4}};
  for (const auto& c : cases) EXPECT_EQ(scaledUpper(c.lower, c.upper, c.factor, 99), c.result) << c.factor;
}

TEST(RulerTicks, writeTimesAndCounts) {
  EXPECT_EQ(formatTime(0), "0:00:00.000");
  EXPECT_EQ(formatTime(3725.0625), "1:02:05.063");
  EXPECT_EQ(formatTime(59.9996), "0:01:00.000");
  EXPECT_EQ(formatTime(90061, 0), "25:01:01");
  EXPECT_EQ(formatTime(-1.5, 1), "-0:00:01.5");
  EXPECT_EQ(formatCount(0), "0");
  EXPECT_EQ(formatCount(999), "999");
  EXPECT_EQ(formatCount(1000), "1 000");
  EXPECT_EQ(formatCount(-1234567), "-1 234 567");
}

std::string labels(const std::vector<AmplitudeTick>& ticks) {
  std::string all;
  for (const AmplitudeTick& tick : ticks) all += tick.label + " ";
  return all;
}

TEST(RulerTicks, labelAmplitudes) {
  EXPECT_EQ(labels(amplitudeTicks(200, 1, false, 40)), "0 0.5 -0.5 1 -1 ");
  EXPECT_EQ(labels(amplitudeTicks(200, 10, false, 40)), "0 0.05 -0.05 0.1 -0.1 ");
  EXPECT_EQ(labels(amplitudeTicks(30, 1, false, 40)), "0 ");
  EXPECT_EQ(labels(amplitudeTicks(200, 1, true, 24)), "-\xE2\x88\x9E 0 0 -6 -6 -12 -12 ");
  EXPECT_EQ(amplitudeTicks(0, 1, false, 40).size(), 1u);
}

}  // namespace
}  // namespace plumetta
