// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/regions.h"
#include "support/waves.h"

namespace plumetta {
namespace {

TEST(LoopPoints, HoldTenAtMost) {
  CLoopPoints loops;
  for (int i = 0; i < 10; ++i) EXPECT_TRUE(loops.add({0, 0, i, i + 1, 0, 0}));
  EXPECT_FALSE(loops.add({}));
  EXPECT_EQ(loops.count(), 10);
  EXPECT_EQ(loops.start(9), 9);
}

TEST(MarkerList, NeighboursAreTheEarliestOfThoseAtOnePlace) {
  CMarkerList markers;
  EXPECT_FALSE(markers.add(-1));
  for (int p : {20, 30, 5, 30}) markers.add(p);
  EXPECT_EQ(markers.nextAfter(20)->index, 1);
  EXPECT_EQ(markers.previousBefore(20)->index, 2);
  EXPECT_FALSE(markers.nextAfter(30));
}

class Envelope : public ::testing::Test {
 protected:
  Envelope() {
    envelope_.setLengthField(100);
    envelope_.addChannel();
  }
  std::vector<int> positions() const {
    std::vector<int> all;
    for (int i = 0; i < envelope_.pointCount(0); ++i) all.push_back(envelope_.point(i, 0).position);
    return all;
  }
  CVolumeEnvelope envelope_;
};

TEST_F(Envelope, EachKindRunsItsCurve) {
  struct Case {
    EnvelopeKind kind;
    float quarter;  // gain a quarter of the way from 0 to 1
  };
  for (const Case& c :
       {Case{EnvelopeKind::linear, 0.5f}, Case{EnvelopeKind::hold, 0.0f}, Case{EnvelopeKind::curve, 0.125f},
        Case{EnvelopeKind::smooth, static_cast<float>(1 - std::sqrt(0.5))}}) {
    CVolumeEnvelope envelope;
    envelope.setLengthField(100);
    envelope.addChannel();
    envelope.insertPoint(20, 0.0f, 0, c.kind);
    envelope.insertPoint(60, 1.0f, 0, EnvelopeKind::linear);
    EXPECT_NEAR(envelope.gainAt(30, 0), c.quarter, 1e-6f);
    std::vector<float> ones(100, 1.0f);
    envelope.apply(ones.data(), 0, 25);  // in pieces that cut a segment
    envelope.apply(ones.data() + 25, 25, 75);
    EXPECT_NEAR(ones[30], c.quarter, 1e-6f);
    EXPECT_FLOAT_EQ(ones[20], 0.0f);
    EXPECT_FLOAT_EQ(ones[60], 2.0f);
    EXPECT_FLOAT_EQ(ones[99], 1.0f);
  }
}

TEST_F(Envelope, ForeignPointsAreBroughtIntoOrder) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  envelope_.adoptChannel(0,
                         {{60, 2.0f, EnvelopeKind::hold},
                          {20, nan, static_cast<EnvelopeKind>(9)},
                          {20, 0.1f, {}},
                          {-5, 0.3f, {}},
                          {400, 0.3f, {}}},
                         7);
  EXPECT_EQ(positions(), (std::vector<int>{0, 20, 60, 99}));
  EXPECT_EQ(envelope_.point(1, 0).value, 0.5f);
  EXPECT_EQ(envelope_.point(1, 0).kind, EnvelopeKind::linear);
  EXPECT_EQ(envelope_.point(2, 0).value, 1.0f);
  EXPECT_EQ(envelope_.flag(0), 7);
  envelope_.adoptChannel(0, {{-1, 0.1f, {}}}, 1);
  EXPECT_EQ(positions().size(), 4u);
}

TEST(EnvelopeGains, ComeOutTheSameInAnyOrderOfFrames) {
  CVolumeEnvelope envelope;
  envelope.setLengthField(100);
  envelope.addChannel();
  for (int i = 1; i < 9; ++i) {
    envelope.insertPoint(i * 11, static_cast<float>(i) / 10, 0, static_cast<EnvelopeKind>(i % 4));
  }
  // Up, twice each, over the end, and back as a loop does.
  std::vector<int32_t> frames{50, 51, 20, 99, 100, 5, -1, 11, 11, 10, 98, 0};
  for (int32_t f = 0; f < 100; ++f) frames.insert(frames.end(), {f, f});
  std::vector<float> gains(frames.size(), -1.0f);
  envelope.gainsAt(frames.data(), static_cast<int>(frames.size()), 0, gains.data());
  for (size_t i = 0; i < frames.size(); ++i) EXPECT_EQ(gains[i], envelope.gainAt(frames[i], 0)) << frames[i];
  EXPECT_FLOAT_EQ(gains[0], 2 * (0.4f + 0.1f * 6 / 11));  // a straight line from 44 to 55
}

TEST(Regions, LieBetweenMarkersAndTheEnds) {
  auto wave = countingWave(1, 1000);
  for (int p : {600, 300, 300, 5000}) wave->markers.add(p);
  EXPECT_EQ(regionBoundaries(*wave), (std::vector<int32_t>{0, 300, 600, 999}));
}

TEST(Regions, SwappingExchangesTheStretchesAndBackAgain) {
  auto wave = countingWave(2, 100);
  for (int p : {10, 30, 60}) wave->markers.add(p);
  wave->markers.setLabel(0, "ten");
  wave->loops.setLoop(62, 70);
  const auto before = framesIn(*wave);
  swapRegions(*wave, 60, 10);
  EXPECT_EQ(framesIn(*wave, 1), span(0, 9) + span(60, 99) + span(31, 59) + span(10, 30));
  EXPECT_EQ(wave->markers[0].position, 79);
  EXPECT_EQ(wave->loops.start(0), 12);
  swapRegions(*wave, 10, 79);
  EXPECT_EQ(framesIn(*wave), before);
}

TEST(Regions, NeighboursShareNoFrameAndNothingIsLost) {
  auto wave = countingWave(1, 100);
  for (int p : {10, 30, 60}) wave->markers.add(p);
  swapRegions(*wave, 10, 30);
  EXPECT_EQ(framesIn(*wave), span(0, 9) + span(30, 60) + span(10, 29) + span(61, 99));
  uint32_t seed = 1;
  scrambleRegions(*wave, 50, [&] { return seed = seed * 1664525u + 1013904223u; });
  auto frames = framesIn(*wave);
  std::sort(frames.begin(), frames.end());
  EXPECT_EQ(frames, span(0, 99));
  const auto before = framesIn(*wave);
  swapRegions(*wave, 20, 99);  // nothing behind the last frame
  EXPECT_EQ(framesIn(*wave), before);
}

}  // namespace
}  // namespace plumetta
