// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/resample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <map>
#include <numbers>

#include "dsp/fir_filter.h"
#include "dsp/phase_vocoder.h"
#include "support/waves.h"

namespace plumetta {
namespace {

constexpr double kPi = std::numbers::pi;

std::unique_ptr<CWave> sineWave(double hz, int32_t frames, int channels = 1, double rate = 44100) {
  auto wave = std::make_unique<CWave>();
  wave->create(static_cast<uint32_t>(rate), channels, 32, frames, kFormatFloat);
  for (int32_t f = 0; f < frames; ++f) {
    for (int c = 0; c < channels; ++c)
      wave->setSample(f, c, static_cast<float>(0.5 * std::sin(2 * kPi * hz * f / rate)));
  }
  return wave;
}

// How far a sine at `hz` stands above all that is left when it is taken away, in dB; over the middle.
double signalToRest(const CWave& wave, double hz) {
  std::complex<double> sum = 0.0;
  const int32_t from = wave.frames() / 4;
  const auto period = static_cast<int32_t>(wave.sampleRate());  // whole periods of every whole frequency
  for (int32_t f = 0; f < period; ++f)
    sum += double{wave.sample(from + f, 0)} * std::polar(1.0, -2 * kPi * hz * f / period);
  sum *= 2.0 / period;
  double rest = 0.0;
  for (int32_t f = 0; f < period; ++f) {
    rest +=
        std::pow(wave.sample(from + f, 0) - (sum * std::polar(1.0, 2 * kPi * hz * f / period)).real(), 2.0);
  }
  return 10.0 * std::log10(std::norm(sum) / 2.0 * period / rest);
}

TEST(Resample, KernelsFollowTheirPolynomials) {
  // A line stays a line, ahead by what each kernel is ahead; only the cubic (1) bends one.
  const std::map<int, double> ahead{{0, 0}, {2, 1}, {3, 0}, {4, 2}, {5, 2}};
  for (const auto& [kernel, offset] : ahead) {
    for (const double target : {6400.0, 12800.0}) {
      const auto wave = countingWave(3, 1000);
      wave->setSampleRate(8000);
      ASSERT_TRUE(resample(*wave, {target, true, kernel}));
      ASSERT_EQ(wave->frames(), 1000 * target / 8000);
      EXPECT_EQ(wave->sampleRate(), target);
      for (const int32_t j : {1, 2, 333, 500}) {
        EXPECT_NEAR(wave->sample(j, 2), j * 8000 / target + offset + 0.02, 1e-4) << kernel << " at " << j;
      }
    }
  }
  const double x[] = {1, 4, 2, 8, 5, 7};
  // Both kernels of six points meet the samples at their ends; one goes through all six of them.
  for (const double t : {0.0, 1.0}) {
    EXPECT_NEAR(OsculatingSixKernel::at(x, t), x[2 + static_cast<int>(t)], 1e-12);
    EXPECT_NEAR(LagrangeSixKernel::at(x, t), x[2 + static_cast<int>(t)], 1e-12);
  }
  double fifth[6];
  for (int k = 0; k < 6; ++k) fifth[k] = std::pow(k - 2, 5);
  EXPECT_NEAR(LagrangeSixKernel::at(fifth, 0.5), std::pow(0.5, 5), 1e-12);
}

TEST(Resample, WithoutInterpolationTakesTheSampleBefore) {
  const auto up = countingWave(1, 5);
  ASSERT_TRUE(resample(*up, {88200, false, 10}));
  EXPECT_EQ(framesIn(*up), (std::vector<int>{0, 0, 1, 1, 2, 2, 3, 3, 4, 4}));
  const auto down = countingWave(1, 10);
  ASSERT_TRUE(resample(*down, {29400, false, 0}));
  EXPECT_EQ(framesIn(*down), (std::vector<int>{0, 1, 3, 4, 6, 7}));
}

TEST(Resample, ToHalfTheRateWithTheFirstKernelKeepsEverySecondFrame) {
  const auto wave = countingWave(2, 9);
  ASSERT_TRUE(resample(*wave, {22050, true, 0}));
  EXPECT_EQ(framesIn(*wave, 1), (std::vector<int>{0, 2, 4, 6}));
}

TEST(Resample, AnnotationsFollow) {
  const auto wave = countingWave(1, 1000);
  wave->markers.add(999, "end");
  wave->markers.add(500, "middle");
  wave->loops.setLoop(100, 201);
  wave->envelope.setLength(1000);
  wave->envelope.addChannel();
  for (const int32_t position : {400, 401, 600})
    wave->envelope.insertPoint(position, 0.25f, 0, EnvelopeKind::linear);
  ASSERT_TRUE(resample(*wave, {22050, true, 0}));
  EXPECT_EQ(markerPositions(*wave), (std::vector<int>{499, 250}));
  EXPECT_EQ(wave->loops.start(0), 50);
  EXPECT_EQ(wave->loops.end(0), 100);
  // 400 and 401 have come together: one of them stays.
  ASSERT_EQ(wave->envelope.pointCount(0), 4);
  EXPECT_EQ(wave->envelope.point(1, 0).position, 200);
  EXPECT_EQ(wave->envelope.point(2, 0).position, 300);
  EXPECT_EQ(wave->envelope.point(3, 0).position, 499);
}

TEST(Resample, SmallOnes) {
  for (const int32_t frames : {1, 2, 3}) {
    for (const int kernel : {0, 1, 2, 3, 4, 5, 10}) {
      const auto wave = countingWave(16, frames);
      ASSERT_TRUE(resample(*wave, {100, true, kernel}));
      EXPECT_EQ(wave->frames(), 1);  // something of the file always stays
    }
  }
  const auto wave = countingWave(1, 100);
  EXPECT_FALSE(resample(*wave, {4e9 * 44100, true, 0}));
  EXPECT_EQ(framesIn(*wave), span(0, 99));
}

// Measured: 62, 40, 85, 105, 133, above 140 and 100 dB.
TEST(Resample, ASineKeepsItsDistanceFromTheNoise) {
  const std::map<int, double> least{{0, 60}, {1, 38}, {2, 80}, {3, 100}, {4, 125}, {5, 135}};
  for (const auto& [kernel, decibels] : least) {
    const auto wave = sineWave(997, 3 * 44100);
    ASSERT_TRUE(resample(*wave, {48000, true, kernel}));
    EXPECT_GT(signalToRest(*wave, 997), decibels) << "kernel " << kernel;
  }
  for (const double target : {32000.0, 22050.0, 43999.0}) {
    const auto wave = sineWave(997, 3 * 44100);
    ASSERT_TRUE(resample(*wave, {target, true, 10}));
    EXPECT_GT(signalToRest(*wave, 997), 90) << target;
  }
}

TEST(Resample, TheBandAboveTheTargetIsGone) {
  // 4 x rate / taps above the cutoff of 10804.5 Hz.
  const auto wave = sineWave(10804.5 + 4 * 44100 / 501.0, 44100);
  ASSERT_TRUE(antiAlias(wave->samples(), wave->frames(), 1, 44100, 22050, 500, {}));
  for (int32_t f = 1000; f < 43000; ++f) ASSERT_LT(std::fabs(wave->sample(f, 0)), 0.5 * 3.2e-5) << f;
}

// ---- Phase vocoder --------------------------------------------------------------------------------------

// Instantaneous level and frequency of what should be a sine, window by window.
struct Steadiness {
  double ripple;  // dB between the loudest and the quietest window
  double cents;   // off the wanted frequency
};
Steadiness steadinessOf(const CWave& wave, double hz) {
  constexpr int32_t kWindow = 4096;
  double loudest = 0.0, quietest = 1e9;
  std::vector<double> phases;
  for (int32_t start = 8192; start + kWindow < wave.frames() - 8192; start += kWindow) {
    std::complex<double> sum = 0.0;
    for (int32_t f = 0; f < kWindow; ++f) {
      const double hann = 0.5 - 0.5 * std::cos(2 * kPi * f / kWindow);
      sum +=
          hann * wave.sample(start + f, 0) * std::polar(1.0, -2 * kPi * hz * (start + f) / wave.sampleRate());
    }
    loudest = std::max(loudest, std::abs(sum));
    quietest = std::min(quietest, std::abs(sum));
    phases.push_back(std::arg(sum));
  }
  double drift = 0.0;
  for (size_t i = 1; i < phases.size(); ++i) drift += std::remainder(phases[i] - phases[i - 1], 2 * kPi);
  const double seconds = static_cast<double>(phases.size() - 1) * kWindow / wave.sampleRate();
  const double offHz = drift / (2 * kPi * seconds);
  return {20 * std::log10(loudest / quietest), 1200 * std::log2((hz + offHz) / hz)};
}

TEST(PhaseVocoder, ASteadySineStaysSteadyAndInTune) {
  for (const double pitch : {0.7, 1.0, 1.2, 2.0}) {
    for (const double hz : {440.0, 997.0, 5000.0}) {
      const auto wave = sineWave(hz, 3 * 44100);
      ASSERT_TRUE(shiftPitch(*wave, {512, 32, pitch}));
      const auto [ripple, cents] = steadinessOf(*wave, hz * pitch);
      EXPECT_LT(ripple, 0.5) << hz << " Hz by " << pitch;
      EXPECT_LT(std::fabs(cents), 2.0) << hz << " Hz by " << pitch;
    }
  }
}

// Without a shift the output is the input, later by the frame less its hop, at a level that only the overlap
// decides; every channel goes its own way.
TEST(PhaseVocoder, UnshiftedSoundComesLateButWhole) {
  CWave wave;
  wave.create(44100, 3, 32, 20000, kFormatFloat);
  for (int32_t f = 3000; f < 16000; ++f) {
    for (int c = 0; c < 3; ++c) wave.setSample(f, c, static_cast<float>(0.3 * std::sin(f * 0.05 * (c + 1))));
  }
  CWave before;
  before.copyFrom(wave);
  constexpr int32_t kLate = 1024 - 1024 / 8;
  ASSERT_TRUE(shiftPitch(wave, {1024, 8, 1.0}));
  double scale[3];
  for (int c = 0; c < 3; ++c) {
    double across = 0.0, power = 0.0;
    for (int32_t f = 5000; f < 12000; ++f) {
      across += wave.sample(f + kLate, c) * before.sample(f, c);
      power += before.sample(f, c) * before.sample(f, c);
    }
    scale[c] = across / power;
    for (int32_t f = 5000; f < 12000; ++f) {
      ASSERT_NEAR(wave.sample(f + kLate, c), scale[c] * before.sample(f, c), 0.01 * scale[c])
          << f << ' ' << c;
    }
  }
  EXPECT_NEAR(scale[1], scale[0], 0.01 * scale[0]);
  EXPECT_NEAR(scale[2], scale[0], 0.01 * scale[0]);
}

TEST(PhaseVocoder, RefusesSettingsThatMakeNoFrames) {
  const auto wave = countingWave(1, 100);
  for (const VocoderSettings& settings : {VocoderSettings{500, 4, 1},
                                          {16384, 4, 1},
                                          {8, 2, 1},
                                          {512, 0, 1},
                                          {512, 513, 1},
                                          {512, 4, 0},
                                          {512, 4, std::nan("")}}) {
    EXPECT_FALSE(shiftPitch(*wave, settings));
  }
  EXPECT_EQ(framesIn(*wave), span(0, 99));
  EXPECT_TRUE(shiftPitch(*wave, {8192, 8192, 1.5}));
}

}  // namespace
}  // namespace plumetta
