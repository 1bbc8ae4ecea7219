// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/amplitude.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "dsp/bit_depth.h"
#include "dsp/channel_layout.h"
#include "dsp/mix.h"
#include "dsp/statistics.h"
#include "dsp/synthesis.h"
#include "support/waves.h"

namespace plumetta {
namespace {

// A buffer of these samples, one list a channel.
std::unique_ptr<CWave> waveOf(const std::vector<std::vector<float>>& channels) {
  auto wave = std::make_unique<CWave>();
  const auto frames = static_cast<int32_t>(channels[0].size());
  wave->create(8000, static_cast<int>(channels.size()), 32, frames, kFormatFloat);
  for (size_t c = 0; c < channels.size(); ++c) {
    for (int32_t f = 0; f < frames; ++f)
      wave->setSample(f, static_cast<int>(c), channels[c][static_cast<size_t>(f)]);
  }
  return wave;
}

std::vector<float> samplesOf(const CWave& wave, int channel = 0) {
  std::vector<float> samples;
  for (int32_t f = 0; f < wave.frames(); ++f) samples.push_back(wave.sample(f, channel));
  return samples;
}

TEST(Fade, EveryCurveFollowsItsFormula) {
  constexpr double kE = static_cast<float>(std::numbers::e);
  const auto formula = [](int curve, double x) {
    switch (curve) {
      case 0:
        return x;
      case 1:
        return (std::exp(x) - 1) / (kE - 1);
      case 2:
        return 1 - std::sin(std::numbers::pi / 2 * (1 - x));
      case 3:
        return x * x;
      default:
        return x * x * x;
    }
  };
  constexpr int kLength = 3001;  // several blocks
  for (int curve = 0; curve < 5; ++curve) {
    for (const auto direction : {FadeDirection::in, FadeDirection::out}) {
      auto wave = waveOf({std::vector<float>(kLength + 20, 1.0f), std::vector<float>(kLength + 20, 1.0f)});
      wave->setActive(ActiveOperation::off, 1);
      ASSERT_TRUE(fade(*wave, {kLength + 9, 10}, static_cast<FadeCurve>(curve), direction));
      for (int i = 0; i < kLength; ++i) {
        const double x = static_cast<double>(i) / (kLength - 1);
        const double gain = formula(curve, direction == FadeDirection::in ? x : 1 - x);
        ASSERT_NEAR(wave->sample(10 + i, 0), gain, 6e-8) << curve << " " << i;
        ASSERT_EQ(wave->sample(10 + i, 1), 1.0f);
      }
      ASSERT_EQ(wave->sample(9, 0), 1.0f);
      ASSERT_EQ(wave->sample(kLength + 10, 0), 1.0f);
    }
  }
  auto two = waveOf({{0.25f, 0.5f, 0.75f}});
  ASSERT_TRUE(fade(*two, {0, 1}, FadeCurve::linear, FadeDirection::in));
  EXPECT_EQ(samplesOf(*two), (std::vector<float>{0.0f, 0.5f, 0.75f}));
  EXPECT_FALSE(fade(*two, {1, 1}, FadeCurve::linear, FadeDirection::in));
  EXPECT_FALSE(fade(*two, {1, 3}, FadeCurve::linear, FadeDirection::in));
}

TEST(Normalize, TakesOnePeakOfAllActiveChannels) {
  for (const size_t channels : {1u, 2u, 3u, 5u, 16u}) {
    std::vector<std::vector<float>> content(channels, std::vector<float>(37, 0.125f));
    content[channels - 1][20] = -0.5f;
    content[0][3] = 0.25f;
    auto wave = waveOf(content);
    ASSERT_TRUE(normalize(*wave, {0, 36}, 0.0));
    EXPECT_EQ(wave->sample(20, static_cast<int>(channels) - 1), -1.0f);
    EXPECT_EQ(wave->sample(36, 0), 0.25f);
  }
  for (size_t frames = 1; frames < 40; ++frames) {  // fewer samples than any vector holds, and a few more
    auto shortOne = waveOf(std::vector<std::vector<float>>(3, std::vector<float>(frames, -0.25f)));
    normalize(*shortOne, {0, static_cast<int32_t>(frames) - 1}, 0.0);
    ASSERT_EQ(shortOne->sample(0, 2), -1.0f) << frames;
  }
  auto wave = waveOf({{0.1f, -0.2f}, {0.9f, 0.9f}});
  wave->setActive(ActiveOperation::off, 1);
  normalize(*wave, {0, 1}, -6.0);
  EXPECT_FLOAT_EQ(wave->sample(1, 0), -0.5011872f);
  EXPECT_EQ(wave->sample(1, 1), 0.9f);
  auto silent = waveOf({{0.0f, 0.0f}});
  normalize(*silent, {0, 1}, 0.0);
  EXPECT_EQ(silent->sample(0, 0), 0.0f);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  auto damaged = waveOf({{nan, 0.5f}});
  normalize(*damaged, {0, 1}, 0.0);
  EXPECT_EQ(damaged->sample(1, 0), 1.0f);
}

TEST(Levels, VolumeClampsItsRangeAndClipsNothing) {
  auto wave = waveOf({{0.4f, 0.4f, 0.4f}, {0.4f, 0.4f, 0.4f}});
  wave->setActive(ActiveOperation::off, 0);
  volume(*wave, {900, 1}, 2.0f);
  volume(*wave, {1, 2}, 2.0f);
  EXPECT_EQ(samplesOf(*wave, 1), (std::vector<float>{0.4f, 1.6f, 1.6f}));
  EXPECT_EQ(samplesOf(*wave, 0), (std::vector<float>{0.4f, 0.4f, 0.4f}));
  wave->setActive(ActiveOperation::all, 0);
  ASSERT_TRUE(clip(*wave, {0, 2}, -6.0));
  EXPECT_FLOAT_EQ(wave->sample(2, 1), 0.501187f);
  EXPECT_EQ(wave->sample(0, 0), 0.4f);
  invert(*wave, {-5, 0});
  EXPECT_EQ(wave->sample(0, 1), -0.4f);
  ASSERT_TRUE(clip(*wave, {0, 2}, -12.0));
  EXPECT_NEAR(wave->sample(0, 1), -0.251189f, 1e-6);
  EXPECT_FALSE(clip(*wave, {1, 1}, -6.0));
  EXPECT_FALSE(clip(*wave, {0, 3}, -6.0));
}

TEST(RemoveDc, DividesByOneLessThanTheFrames) {
  for (const size_t channels : {1u, 2u, 3u}) {
    auto wave = waveOf(std::vector<std::vector<float>>(channels, std::vector<float>(5, 1.0f)));
    ASSERT_TRUE(removeDc(*wave, {3, 0}));
    for (int c = 0; c < wave->channels(); ++c) {
      EXPECT_FLOAT_EQ(wave->sample(3, c), -1 / 3.0f);
      EXPECT_EQ(wave->sample(4, c), 1.0f);
    }
  }
  auto wave = waveOf({{1, 1}, {2, 2}});
  wave->setActive(ActiveOperation::off, 1);
  removeDc(*wave, {0, 1});
  EXPECT_EQ(samplesOf(*wave, 0), (std::vector<float>{-1, -1}));
  EXPECT_EQ(samplesOf(*wave, 1), (std::vector<float>{2, 2}));
  EXPECT_FALSE(removeDc(*wave, {1, 1}));
}

TEST(Places, ReverseInterpolateAndSwap) {
  for (const int channels : {1, 2, 3}) {
    auto wave = countingWave(channels, 10);
    reverse(*wave, {7, 2});
    EXPECT_EQ(framesIn(*wave, channels - 1), (std::vector<int>{0, 1, 7, 6, 5, 4, 3, 2, 8, 9}));
  }
  auto wave = countingWave(2, 5);
  wave->setActive(ActiveOperation::off, 0);
  reverse(*wave, {0, 4});
  EXPECT_EQ(framesIn(*wave, 0), span(0, 4));
  EXPECT_EQ(framesIn(*wave, 1), (std::vector<int>{4, 3, 2, 1, 0}));
  swapStereo(*wave, {1, 90});
  EXPECT_EQ(framesIn(*wave, 0), (std::vector<int>{0, 3, 2, 1, 0}));

  auto line = waveOf({{1.0f, 9.0f, 9.0f, 9.0f, 3.0f}});
  ASSERT_TRUE(interpolate(*line, {4, 0}));
  EXPECT_EQ(samplesOf(*line), (std::vector<float>{1.0f, 1.5f, 2.0f, 2.5f, 3.0f}));
  EXPECT_FALSE(interpolate(*line, {2, 2}));

  auto voices = waveOf({{0.5f, 0.5f, 0.5f}, {0.25f, 0.25f, 0.25f}});
  removeVocals(*voices, {0, 2});
  EXPECT_EQ(samplesOf(*voices, 1), (std::vector<float>{0.25f, 0.25f, 0.25f}));
  EXPECT_EQ(samplesOf(*voices, 0), (std::vector<float>{0.25f, 0.25f, 0.5f}));
  EXPECT_FALSE(removeVocals(*line, {0, 1}));
}

TEST(CrossfadeLoop, BlendsWhatPrecedesTheLoopIntoItsEnd) {
  auto wave = waveOf({std::vector<float>(6000, 1.0f)});
  wave->loops.setLoop(1000, 5000);
  const auto before = samplesOf(*wave);
  ASSERT_TRUE(crossfadeLoop(*wave, 1.0));
  EXPECT_EQ(wave->sample(3999, 0), 1.0f);
  // Half way, half of the end is left and half of the beginning has come.
  EXPECT_NEAR(wave->sample(4500, 0), 0.5 + 500.0 / 999, 1e-6);
  EXPECT_EQ(wave->sample(5000, 0), 0.0f);
  EXPECT_EQ(wave->sample(4999, 0), 0.001f + 1.0f);
  EXPECT_EQ(wave->sample(5001, 0), 1.0f);
  wave->loops.clear();
  EXPECT_FALSE(crossfadeLoop(*wave, 1.0));
  wave->loops.setLoop(1, 2);  // a single frame: no weight can be made of it
  ASSERT_TRUE(crossfadeLoop(*wave, 1.0));
  EXPECT_FALSE(std::isnan(wave->sample(1, 0)));
}

TEST(TestSignals, DiracStepImpulsesAndSweeps) {
  auto wave = waveOf({std::vector<float>(20000, 0.3f), std::vector<float>(20000, 0.3f)});
  wave->setActive(ActiveOperation::solo, 1);
  setDirac(*wave, 5);
  EXPECT_EQ(wave->sample(5, 1), 1.0f);
  EXPECT_EQ(wave->sample(6, 1), 0.3f);
  setStep(*wave, 7);
  EXPECT_EQ(wave->sample(6, 1), 0.0f);
  EXPECT_EQ(wave->sample(7, 1), 1.0f);
  EXPECT_EQ(wave->sample(7, 0), 0.3f);
  synthesize(*wave, SynthesisType::impulseTrain, 1.0f);
  double sum = 0;
  for (int f = 0; f < 20000; ++f) sum += wave->sample(f, 1);
  EXPECT_EQ(sum, 3.0);  // at 0, 1 and 2 seconds
  EXPECT_EQ(wave->sample(8000, 1), 1.0f);
  for (const auto type : {SynthesisType::sweepLinear, SynthesisType::sweepExponential}) {
    synthesize(*wave, type, 0.5f);
    const auto crossings = [&](int from, int to) {
      int count = 0;
      for (int f = from + 1; f < to; ++f) count += (wave->sample(f, 1) >= 0) != (wave->sample(f - 1, 1) >= 0);
      return count;
    };
    EXPECT_LT(crossings(0, 200), 60);
    EXPECT_GT(crossings(19800, 20000), 180);  // close to half the rate
  }
}

TEST(BitDepth, QuantizesToTheStepsOfItsWidth) {
  auto wave = waveOf({{0.5f, -2.0f, 0.00001f, std::numeric_limits<float>::quiet_NaN()}});
  quantize(*wave, 24);
  EXPECT_EQ(wave->sample(1, 0), -2.0f);
  quantize(*wave, 8);
  EXPECT_EQ(samplesOf(*wave), (std::vector<float>{64 / 127.0f, -1.0f, 0.0f, 0.0f}));
  wave->setSample(0, 0, 2.9f / 32767);
  wave->setSample(1, 0, -2.9f / 32767);
  quantize(*wave, 16);
  EXPECT_EQ(wave->sample(0, 0), static_cast<float>(2 / 32767.0));
  EXPECT_EQ(wave->sample(1, 0), static_cast<float>(-2 / 32767.0));
}

TEST(Dither, IsUniformUncorrelatedAndNewEachTime) {
  constexpr int kFrames = 100000;
  const auto noise = [](int bits, DitherType type) {
    auto wave = waveOf({std::vector<float>(kFrames, 0.0f)});
    addDither(*wave, bits, type);
    return samplesOf(*wave);
  };
  const auto a = noise(8, DitherType::halfStep);
  EXPECT_NE(a, noise(8, DitherType::halfStep));
  double sum = 0, squares = 0, neighbours = 0;
  float peak = 0;
  for (int i = 1; i < kFrames; ++i) {
    sum += a[i];
    squares += a[i] * a[i];
    neighbours += a[i] * a[i - 1];
    peak = std::max(peak, std::fabs(a[i]));
  }
  EXPECT_NEAR(peak, 0x1p-8f, 1e-5);
  EXPECT_NEAR(sum / kFrames, 0.0, 5e-5);
  EXPECT_NEAR(squares / kFrames, 0x1p-16 / 3, 1e-7);  // a uniform distribution's
  EXPECT_NEAR(neighbours / squares, 0.0, 0.02);
  const auto full = noise(16, DitherType::fullStep);
  EXPECT_NEAR(*std::max_element(full.begin(), full.end()), 0x1p-15f, 1e-7);
  EXPECT_EQ(noise(24, DitherType::fullStep), std::vector<float>(kFrames, 0.0f));
}

TEST(ChannelLayout, ChannelsComeGoAndChangePlaces) {
  auto wave = countingWave(2, 3);
  wave->envelope.setLengthField(3);
  wave->envelope.addChannel();
  wave->envelope.addChannel();
  wave->envelope.insertPoint(1, 0.75f, 1, EnvelopeKind::linear);
  ASSERT_TRUE(cloneChannel(*wave, 1));
  ASSERT_TRUE(insertChannel(*wave, 0));
  EXPECT_EQ(wave->channels(), 4);
  EXPECT_EQ(wave->sample(2, 0), 0.0f);
  EXPECT_EQ(wave->sample(2, 1), 2.0f);
  EXPECT_EQ(wave->sample(2, 3), 2.01f);
  EXPECT_EQ(wave->envelope.pointCount(3), 3);
  ASSERT_TRUE(swapWithNextChannel(*wave, 3));
  EXPECT_EQ(wave->sample(2, 0), 2.01f);
  EXPECT_EQ(wave->sample(2, 3), 0.0f);
  EXPECT_EQ(wave->envelope.pointCount(0), 3);
  EXPECT_FALSE(insertChannel(*wave, 5));
  EXPECT_FALSE(insertChannel(*countingWave(16, 1), 0));
  EXPECT_FALSE(swapWithNextChannel(*countingWave(1, 1), 0));
}

TEST(Mix, AddsLengthensAndBringsAnnotations) {
  auto wave = countingWave(2, 10);
  auto clip = countingWave(2, 4);
  clip->markers.add(1);
  clip->loops.setLoop(0, 3);
  ASSERT_TRUE(mixBuffer(*wave, *clip, 500, 1.0f));
  EXPECT_EQ(framesIn(*wave), span(0, 9) + span(1, 3));
  EXPECT_EQ(markerPositions(*wave), std::vector<int>{10});
  EXPECT_EQ(wave->loops.end(0), 12);
  ASSERT_TRUE(mixBuffer(*wave, *clip, 1, 0.5f));
  EXPECT_EQ(wave->sample(4, 0), 5.5f);
  EXPECT_EQ(wave->frames(), 13);
  EXPECT_FALSE(mixBuffer(*wave, *countingWave(1, 4), 0, 1.0f));
}

TEST(Statistics, ReportsInTheWordsOfTheWindow) {
  auto wave = waveOf({std::vector<float>(100, -0.5f)});
  wave->setFileName("x.wav");
  EXPECT_EQ(statisticsReport(*wave, 0, 0, true),
            "Statistics:\r\n\tRMS power :\t\t50.00%\t(-6.02 dB)\r\n\tAverage value (DC offset) "
            ":\t-50.00%\t(-6.02 dB)\r\n"
            "\tMin value :\t\t-50.00%\t(-6.02 dB)\r\n\tMax value :\t\t-50.00%\t(-6.02 dB)\r\n"
            "General information:\r\n\tSample name:\t\tx.wav\r\n\tChannel number:\t\t1\r\n\tSample "
            "number:\t\t100\r\n"
            "\tTotal duration:\t\t00:00:00:012\r\n\tFrequency:\t\t8000Hz\r\n\tBits per sample:\t\t32\r\n"
            "\tFormat:\t\t\tFLOAT\r\nNo loop points\r\nNo marker points\r\nNo automation points\r\n");

  auto five = waveOf(std::vector<std::vector<float>>(5, std::vector<float>(30, 0.0f)));
  five->setSample(20, 3, 0.5f);  // the upper bound of the selection is left out
  five->setSample(10, 3, 0.25f);
  five->loops.setLoop(1, 2);
  five->markers.add(7);
  five->envelope.setLengthField(30);
  five->envelope.addChannel();
  five->setFormatTag(2);
  const std::string report = statisticsReport(*five, 10, 20, true);
  const auto has = [&](const char* text) { return report.find(text) != std::string::npos; };
  const std::string line = "\t-----------------------------------\r\n";
  EXPECT_EQ(report.find("Statistics:\r\n" + line + "\tRMS power ch0:\t\t0.00%\t(-inf dB)\r\n"), 0u);
  EXPECT_TRUE(has("\tMax value ch3:\t\t25.00%\t(-12.04 dB)\r\n"));
  EXPECT_TRUE(has("\tAverage value 4 (DC offset):\t0.00%\t(-inf dB)\r\n"));
  EXPECT_TRUE(
      has("Selection:\r\n\tSelection start:\t\t10\r\n\tSelection end:\t\t20\r\n\tDelta:\t\t\t11\r\n"));
  EXPECT_TRUE(has("Loop points:\r\n\tLoop start:\t\t1\r\n\tLoop end:\t\t2\r\n"));
  EXPECT_TRUE(has("Marker points: 1 markers\r\n\tMarker 00:\t\t7\r\n"));
  EXPECT_TRUE(has("Automation points:\r\n\tChannel 00:\t\t2 points\r\n"));
  EXPECT_FALSE(has("\tFormat:"));
  EXPECT_EQ(statisticsReport(*five, 0, 0, false).find("General information:"), 0u);
}

}  // namespace
}  // namespace plumetta
