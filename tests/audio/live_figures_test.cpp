// SPDX-License-Identifier: GPL-3.0-or-later
// What live displays draw from: the sound and the position on their way to the window, levels that fall,
// spectra, triggers and stereo figures.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <thread>

#include "audio/level_meter.h"
#include "audio/live_spectrum.h"
#include "audio/play_clock.h"
#include "audio/sound_tap.h"
#include "audio/stereo_figures.h"
#include "support/forbid_allocation.h"

namespace plumetta {
namespace {

using std::numbers::pi;

std::vector<float> sine(size_t frames, double periodFrames, double amplitude = 1.0, double phase = 0.0) {
  std::vector<float> samples;
  for (size_t i = 0; i < frames; ++i) {
    const double angle = 2 * pi * (static_cast<double>(i) / periodFrames + phase);
    samples.push_back(static_cast<float>(amplitude * std::sin(angle)));
  }
  return samples;
}

// ---- Meters ---------------------------------------------------------------------------------------------

TEST(LevelMeter, RisesAtOnceFallsTwentyDecibelsASecondAndHoldsForTwo) {
  LevelMeter meter;
  EXPECT_FALSE(meter.falling());
  // After each step: peak and seconds that are fed, level and held level in dB.
  const struct {
    float peak;
    double seconds, level, held;
  } steps[] = {
      {0.5f, 0.1, -6.02, -6.02},   {0.0f, 0.5, -16.02, -6.02}, {0.1f, 0.5, -20.0, -6.02},
      {0.0f, 0.9, -38.0, -6.02},   {0.0f, 0.5, -48.0, -16.02}, {0.25f, 0.1, -12.04, -12.04},
      {0.0f, 1.5, -42.04, -12.04}, {0.0f, 10.0, -72.0, -72.0},
  };
  for (const auto& step : steps) {
    EXPECT_EQ(meter.falling(), &step != steps);
    meter.advance(step.peak, step.seconds);
    EXPECT_NEAR(meter.levelDb(), step.level, 0.01) << &step - steps;
    EXPECT_NEAR(meter.heldDb(), step.held, 0.01) << &step - steps;
  }
  EXPECT_FALSE(meter.falling());
  EXPECT_FALSE(meter.clipped());
}

TEST(LevelMeter, ClipLightBurnsFromTheEnginesLimitUntilItIsPutOut) {
  LevelMeter meter;
  meter.advance(0.9989f, 0.04);
  EXPECT_FALSE(meter.clipped());
  meter.advance(0.999f, 0.04);
  EXPECT_TRUE(meter.clipped());
  meter.advance(0.0f, 100.0);
  EXPECT_TRUE(meter.clipped());
  meter.clearClip();
  EXPECT_FALSE(meter.clipped());
  for (const float mad : {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
    meter.advance(mad, 0.04);
    EXPECT_TRUE(std::isfinite(meter.levelDb()));
  }
}

// ---- From the audio thread ------------------------------------------------------------------------------

TEST(SoundTap, BringsTheFirstTwoChannelsAndOneForBothSides) {
  SoundTap tap;
  StereoTrail trail(4);
  const float a[] = {1, 2, 3}, b[] = {-1, -2, -3}, c[] = {9, 9, 9};
  const float* channels[] = {a, b, c};
  tap.feed(channels, 3, 3);
  tap.feed(channels, 2, 1);
  tap.feed(channels, 3, 0);
  EXPECT_EQ(tap.readInto(trail, 9), 0u);
  EXPECT_EQ(tap.readInto(trail, 2), 3u);
  EXPECT_EQ(trail.left()[3], 3.0f);
  EXPECT_EQ(tap.readInto(trail), 2u);
  EXPECT_EQ(std::vector(trail.left().begin(), trail.left().end()), (std::vector<float>{2, 3, 1, 2}));
  EXPECT_EQ(std::vector(trail.right().begin(), trail.right().end()), (std::vector<float>{-2, -3, 1, 2}));
  EXPECT_EQ(tap.readInto(trail), 0u);
  EXPECT_FALSE(trail.silent());
  trail.appendSilence(3);
  EXPECT_EQ(trail.left()[0], 2.0f);
  EXPECT_FALSE(trail.silent());
  trail.appendSilence(1000);
  EXPECT_TRUE(trail.silent());
  const float mad[] = {std::numeric_limits<float>::quiet_NaN(), 1e30f};
  trail.append(mad);
  EXPECT_EQ(trail.left()[3], 0.0f);
  EXPECT_EQ(trail.right()[3], 8.0f);
}

// Every frame holds its number on both sides; a reader sees them in order, without a torn pair, and a writer
// that nobody listens to does not wait.
TEST(SoundTap, StaysInOrderBetweenTwoThreads) {
  SoundTap tap;
  constexpr int kBlock = 300, kBlocks = 2000;
  std::thread writer([&] {
    std::vector<float> left(kBlock), right(kBlock);
    const float* channels[] = {left.data(), right.data()};
    for (int block = 0; block < kBlocks; ++block) {
      for (int i = 0; i < kBlock; ++i) {
        left[static_cast<size_t>(i)] = static_cast<float>(block * kBlock + i) / 1e6f;
        right[static_cast<size_t>(i)] = -left[static_cast<size_t>(i)];
      }
      const ForbidAllocation forbid;
      tap.feed(channels, kBlock, 2);
    }
  });
  StereoTrail trail(40000);
  int torn = 0, backward = 0;
  for (int reading = 0; reading < 200; ++reading) {
    tap.readInto(trail);
    for (size_t i = 0; i < trail.frames(); ++i) {
      torn += trail.left()[i] != -trail.right()[i];
      backward += i > 0 && trail.left()[i] < trail.left()[i - 1];
    }
  }
  writer.join();
  tap.readInto(trail);
  EXPECT_EQ(torn, 0);
  EXPECT_EQ(backward, 0);
  EXPECT_GT(trail.left().back(), 0.0f);
}

TEST(PlayClock, TellsEachPlaceOnceAndNeverHalfOfTwo) {
  PlayClock clock;
  EXPECT_FALSE(clock.take());
  clock.setPosition(12.5, 8000);
  const auto place = clock.take();
  ASSERT_TRUE(place);
  EXPECT_EQ(place->frame, 12.5);
  EXPECT_EQ(place->sampleRate, 8000u);
  EXPECT_FALSE(clock.take());

  std::thread writer([&] {
    const ForbidAllocation forbid;
    for (uint32_t i = 1; i <= 200000; ++i) clock.setPosition(i, i);
  });
  int mixed = 0;
  for (double last = 0; last < 200000;) {
    const auto seen = clock.take();
    if (!seen) continue;
    mixed += seen->frame != seen->sampleRate;
    last = seen->frame;
  }
  writer.join();
  EXPECT_EQ(mixed, 0);
}

// ---- Figures --------------------------------------------------------------------------------------------

TEST(Trigger, FindsTheLastRiseThatLeavesEnoughToDraw) {
  // Periods of 100 frames begin to rise at 0, 100, 200 ...; the very first has nothing below it.
  const std::vector<float> tone = sine(1000, 100, 0.3, 0.002);
  EXPECT_EQ(triggerFrame(tone, 250), 700u);
  EXPECT_EQ(triggerFrame(tone, 300), 700u);
  EXPECT_EQ(triggerFrame(tone, 301), 600u);
  EXPECT_EQ(triggerFrame(tone, 950), 50u);  // no rise leaves that much
  EXPECT_EQ(triggerFrame(tone, 5000), 0u);
  EXPECT_EQ(triggerFrame(std::vector<float>(1000), 100), 900u);
  // Ripple about zero starts no drawing.
  std::vector<float> ripple = tone;
  for (size_t i = 640; i < 660; ++i) ripple[i] = i % 2 == 0 ? 0.01f : -0.01f;
  EXPECT_EQ(triggerFrame(ripple, 301), 600u);
}

TEST(StereoFigures, CorrelationAndDirections) {
  const std::vector<float> tone = sine(1000, 100), opposite = sine(1000, 100, -0.2),
                           quarter = sine(1000, 100, 1, 0.25), sixth = sine(1000, 100, 0.5, 1.0 / 6),
                           silence(1000);
  EXPECT_NEAR(correlation(tone, tone), 1.0, 1e-9);
  EXPECT_NEAR(correlation(tone, opposite), -1.0, 1e-9);
  EXPECT_NEAR(correlation(tone, quarter), 0.0, 1e-6);
  EXPECT_NEAR(correlation(tone, sixth), 0.5, 1e-6);  // cos 60°
  EXPECT_EQ(correlation(tone, silence), 0.0);

  const double side = std::sqrt(0.5);
  const struct {
    float left, right;
    double x, y;
  } cases[] = {{1, 1, 0, 2 * side}, {1, 0, -side, side}, {0, 1, side, side}, {1, -1, -2 * side, 0}};
  for (const auto& at : cases) {
    EXPECT_NEAR(stereoPoint(at.left, at.right).x, at.x, 1e-9);
    EXPECT_NEAR(stereoPoint(at.left, at.right).y, at.y, 1e-9);
  }
}

TEST(LiveSpectrum, SinesReadTheirLevelsEachInItsChannelAndFallEvenly) {
  LiveSpectrum spectrum;
  EXPECT_FALSE(spectrum.falling());
  const size_t frames = LiveSpectrum::kFrames;
  const std::vector<float> silence(frames), half(frames, 0.5f);
  // Lines 64 and 512.
  spectrum.advance(sine(frames, 64.0, 1.0), sine(frames, 8.0, 0.1, 0.2), 0.04);
  EXPECT_NEAR(spectrum.levels(0)[64], 0.0, 0.01);
  EXPECT_NEAR(spectrum.levels(1)[512], -20.0, 0.01);
  EXPECT_LT(spectrum.levels(0)[512], -100.0f);
  EXPECT_LT(spectrum.levels(1)[64], -100.0f);
  spectrum.advance(silence, silence, 0.5);
  EXPECT_NEAR(spectrum.levels(0)[64], -24.0, 0.01);
  EXPECT_NEAR(spectrum.levels(1)[512], -44.0, 0.01);
  EXPECT_TRUE(spectrum.falling());
  spectrum.advance(silence, silence, 2.0);
  EXPECT_FALSE(spectrum.falling());
  spectrum.advance(half, silence, 0.04);
  EXPECT_NEAR(spectrum.levels(0)[0], -6.02, 0.01);
}

}  // namespace
}  // namespace plumetta
