// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/silence.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "dsp/delete_ranges.h"
#include "dsp/gapper.h"
#include "support/waves.h"

namespace plumetta {
namespace {

std::unique_ptr<CWave> ones(int channels, int32_t frames, uint32_t rate) {
  auto wave = std::make_unique<CWave>();
  wave->create(rate, channels, 32, frames, kFormatFloat);
  std::fill_n(wave->samples(), wave->sampleCount(), 1.0f);
  return wave;
}

std::string textOf(const std::vector<FrameRange>& ranges) {
  std::string text;
  for (const FrameRange& range : ranges) {
    text += std::to_string(range.first) + "-" + std::to_string(range.last) + " ";
  }
  return text;
}

// -20 dB is 0.1. The second channel is loud at frame 12 alone, and not active.
TEST(Silence, IsWhereEveryChannelLiesBelowTheLevel) {
  const float left[] = {0, .05f, -.1f, .2f, 0, 0, .3f, 0, 0, 0, -.5f, 0, 0, 0, 0};
  CWave wave;
  wave.create(8000, 2, 32, 15, kFormatFloat);
  for (int f = 0; f < 15; ++f) wave.setSample(f, 0, left[f]);
  wave.setSample(12, 1, 1.0f);
  wave.setActive(ActiveOperation::off, 1);
  struct Case {
    FrameRange range;
    int64_t gap;
    const char* sound;
    const char* silence;
  };
  const Case cases[] = {
      {{0, 14}, 1, "2-3 6-6 10-10 12-12 ", "0-1 4-5 7-9 11-11 13-14 "},
      {{0, 14}, 2, "2-3 6-6 10-12 ", "0-1 4-5 7-9 13-14 "},
      {{0, 14}, 3, "2-6 10-12 ", "7-9 "},
      {{0, 14}, 4, "2-12 ", ""},
      {{3, 8}, 2, "3-3 6-6 ", "4-5 7-8 "},
      {{7, 9}, 3, "", "7-9 "},
  };
  for (const Case& one : cases) {
    const auto sound = findSound(wave, one.range, -20.0, one.gap);
    EXPECT_EQ(textOf(sound), one.sound) << one.gap;
    EXPECT_EQ(textOf(silenceAround(sound, one.range, one.gap)), one.silence) << one.gap;
  }
}

std::string annotationsOf(const CWave& wave) {
  std::string text;
  for (const Marker& m : wave.markers) {
    text += std::to_string(m.id) + "@" + std::to_string(m.position) + m.label.value_or("-") + " ";
  }
  for (int i = 0; i < wave.loops.count(); ++i) {
    text += "loop " + std::to_string(wave.loops.start(i)) + "-" + std::to_string(wave.loops.end(i)) + " ";
  }
  for (int i = 0; i < wave.envelope.pointCount(1); ++i) {
    text += std::to_string(wave.envelope.point(i, 1).position) + "=" +
            std::to_string(wave.envelope.point(i, 1).value) + "/" +
            std::to_string(static_cast<int>(wave.envelope.point(i, 1).kind)) + " ";
  }
  return text + std::to_string(wave.envelope.length());
}

TEST(DeleteRanges, LeavesWhatDeletingOneAfterTheOtherLeaves) {
  std::mt19937 random(5);
  const auto below = [&](int n) { return static_cast<int32_t>(random() % static_cast<unsigned>(n)); };
  for (int round = 0; round < 500; ++round) {
    const int32_t frames = 2 + below(60);
    auto wave = countingWave(2, frames);
    for (int i = 0; i < 4; ++i) wave->markers.add(below(frames), "m" + std::to_string(i));
    for (int i = 0; i < 3; ++i) wave->loops.add({0, 0, below(frames), below(frames), 0, 0});
    wave->envelope.setLengthField(frames);
    for (int c = 0; c < 2; ++c) wave->envelope.addChannel();
    wave->envelope.setKind(1, 1, EnvelopeKind::curve);
    for (int i = 0; i < 6; ++i) wave->envelope.insertPoint(below(frames), 0.125f * i, 1, EnvelopeKind::hold);
    std::vector<FrameRange> ranges;
    for (int32_t first = below(4); first < frames - 1; first += 2 + below(9)) {
      const int32_t last = std::min(first + below(7), frames - 1 - (ranges.empty() ? 1 : 0));
      ranges.push_back({first, last});
      first = last;
    }
    CWave other;
    ASSERT_TRUE(other.copyFrom(*wave));
    int32_t left = frames;
    for (const FrameRange& range : ranges) left -= range.length();
    if (left == 0) continue;
    deleteRanges(*wave, ranges);
    for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
      ASSERT_TRUE(other.deleteRange(range->first, range->last));
    }
    ASSERT_EQ(framesIn(*wave, 1), framesIn(other, 1)) << textOf(ranges);
    ASSERT_EQ(annotationsOf(*wave), annotationsOf(other)) << textOf(ranges);
  }
}

// 10 Hz at 8000 frames a second: 400 frames open, 400 closed.
TEST(Gate, OpensAndClosesByItsEdges) {
  const auto gated = [](Gate gate) {
    auto wave = ones(2, 8000, 8000);
    wave->setActive(ActiveOperation::off, 1);
    applyGate(*wave, gate);
    for (int f = 0; f < 8000; ++f) EXPECT_EQ(wave->sample(f, 1), 1.0f);
    return wave;
  };
  const auto linear = gated({GateEdge::linear, 10, 10, 0.5, 0.25});
  for (int k = 0; k < 800; ++k) {
    const double expected = k < 200 ? k / 200.0 : k < 300 ? 1.0 : k < 400 ? (400 - k) / 100.0 : 0.0;
    ASSERT_NEAR(linear->sample(2400 + k, 0), expected, 1e-5) << k;
  }
  EXPECT_NEAR(gated({GateEdge::sine, 10, 10, 0.5, 0.5})->sample(50, 0), 0.5 - std::sqrt(0.125), 1e-6);
  EXPECT_NEAR(gated({GateEdge::exponential, 10, 10, 0.5, 0.5})->sample(100, 0),
              (std::sqrt(std::numbers::e) - 1) / (std::numbers::e - 1), 1e-6);
  EXPECT_NEAR(gated({GateEdge::square, 10, 10, 0.5, 0.5})->sample(100, 0), 0.25, 1e-6);
  // Without fades an edge is one millisecond: eight frames.
  const auto hard = gated({GateEdge::linear, 10, 10, 0, 0});
  EXPECT_NEAR(hard->sample(1604, 0), 0.5, 1e-5);
  EXPECT_EQ(hard->sample(1608, 0), 1.0f);
  // From 2 to 6 Hz within a second: the fourth cycle begins when 2t + 2t² = 3.
  const auto rising = gated({GateEdge::linear, 2, 6, 0.1, 0.1});
  const int fourth = static_cast<int>(8000 * (std::sqrt(7.0) - 1) / 2);
  EXPECT_EQ(rising->sample(fourth - 100, 0), 0.0f);
  EXPECT_EQ(rising->sample(fourth, 0), 0.0f);
  EXPECT_GT(rising->sample(fourth + 2, 0), 0.0f);
}

}  // namespace
}  // namespace plumetta
