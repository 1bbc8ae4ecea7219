// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "dsp/fir_filter.h"
#include "dsp/moving_average.h"
#include "dsp/recursive_filters.h"
#include "support/waves.h"

namespace plumetta {
namespace {

constexpr double kPi = std::numbers::pi;

std::unique_ptr<CWave> noiseWave(int channels, int32_t frames) {
  auto wave = std::make_unique<CWave>();
  wave->create(44100, channels, 32, frames, kFormatFloat);
  std::mt19937 random(7);
  std::uniform_real_distribution<float> value(-1.0f, 1.0f);
  for (size_t i = 0; i < wave->sampleCount(); ++i) wave->samples()[i] = value(random);
  return wave;
}

double decibels(double gain) { return 20.0 * std::log10(gain); }

// ---- Moving average -------------------------------------------------------------------------------------

TEST(MovingAverage, IsTheMeanOfWhatFollowsWithSilenceAtTheEnd) {
  for (const int32_t length : {1, 3, 30, 40000}) {
    const auto wave = noiseWave(3, 35000);  // several chunks
    const auto before = noiseWave(3, 35000);
    wave->setActive(ActiveOperation::off, 1);
    ASSERT_TRUE(movingAverage(*wave, length));
    for (const int32_t frame : {0, 1, 16383, 16384, 34998, 34999}) {
      for (const int channel : {0, 2}) {
        double sum = 0.0;
        for (int32_t k = frame; k < std::min(frame + length, 35000); ++k) sum += before->sample(k, channel);
        EXPECT_NEAR(wave->sample(frame, channel), sum / length, 1e-7) << length << " at " << frame;
      }
      EXPECT_EQ(wave->sample(frame, 1), before->sample(frame, 1));
    }
  }
}

TEST(MovingAverage, RefusesWhatItCannotDo) {
  const auto wave = countingWave(16, 10);
  EXPECT_FALSE(movingAverage(*wave, 3));
  EXPECT_EQ(framesIn(*wave), span(0, 9));
  EXPECT_FALSE(movingAverage(*countingWave(15, 10), 0));
  EXPECT_TRUE(movingAverage(*countingWave(15, 10), 3));
}

// ---- Recursive filters ----------------------------------------------------------------------------------

// What a filter answers to a single 1 in the middle of silence, so that what it does at the ends shows too.
std::vector<double> impulseResponse(bool (*filter)(CWave&), int32_t frames, int32_t at) {
  CWave wave;
  wave.create(44100, 1, 32, frames, kFormatFloat);
  wave.setSample(at, 0, 1.0f);
  EXPECT_TRUE(filter(wave));
  return {wave.samples(), wave.samples() + frames};
}

TEST(RecursiveFilters, LookAheadAndKeepTheEnds) {
  // A constant of 0 only shifts: two frames earlier, while the last two keep their values.
  const auto wave = countingWave(2, 20);
  ASSERT_TRUE(rcFilter(*wave, true, 0.0));
  EXPECT_EQ(framesIn(*wave), span(0, 1) + span(4, 19) + span(18, 19));
  EXPECT_FALSE(rcFilter(*wave, true, 1.5));
  EXPECT_FALSE(rcFilter(*wave, true, std::nan("")));
  // y[n] = 0.5 x[n + 2] + 0.5 y[n - 1]
  const auto low = impulseResponse([](CWave& w) { return rcFilter(w, true, 0.5); }, 16, 8);
  for (int n = 0; n < 14; ++n)
    EXPECT_DOUBLE_EQ(low[static_cast<size_t>(n)], n < 6 ? 0.0 : std::ldexp(1.0, 5 - n)) << n;
  // y[n] = 0.75 (x[n + 2] - x[n + 1]) + 0.5 y[n - 1]
  const auto high = impulseResponse([](CWave& w) { return rcFilter(w, false, 0.5); }, 16, 8);
  double y = 0.75;
  for (int n = 6; n < 13; ++n, y = n == 7 ? -0.375 : y / 2)
    EXPECT_NEAR(high[static_cast<size_t>(n)], y, 1e-7) << n;
  for (const int32_t frames : {1, 2, 3, 4}) {
    const auto small = countingWave(1, frames);
    ASSERT_TRUE(rcFilter(*small, false, 0.5));
    EXPECT_EQ(framesIn(*small), span(0, frames - 1));  // nothing lies between the ends
  }
}

// By the cookbook of bilinear transforms instead of the cascade: gain of a Chebyshev filter of type 1.
double chebyshevTheory(int poles, double cutoff, double ripplePercent, PassType type, double frequency) {
  double ratio = std::tan(kPi * frequency) / std::tan(kPi * cutoff);
  if (type == PassType::high) ratio = 1.0 / ratio;
  const double e = std::sqrt(std::pow(100.0 / (100.0 - ripplePercent), 2.0) - 1.0);
  // The design's ripple ends short of the cutoff, where the response has fallen to -3 dB.
  const double x = ratio * (ripplePercent == 0.0 ? 1.0 : std::cosh(std::acosh(1.0 / e) / poles));
  if (ripplePercent == 0.0) return 1.0 / std::sqrt(1.0 + std::pow(ratio, 2.0 * poles));
  const double t =
      std::fabs(x) <= 1.0 ? std::cos(poles * std::acos(x)) : std::cosh(poles * std::acosh(std::fabs(x)));
  return 1.0 / std::sqrt(1.0 + e * e * t * t);
}

TEST(RecursiveFilters, ChebyshevFollowsItsTheory) {
  for (const int poles : {2, 4, 6, 8}) {
    for (const double ripple : {0.0, 0.5, 1.0}) {
      for (const auto type : {PassType::low, PassType::high}) {
        const RecursiveFilter filter = chebyshevDesign(poles, 0.1, ripple, type);
        for (const double frequency : {0.01, 0.05, 0.09, 0.1, 0.12, 0.2, 0.3, 0.45}) {
          // Even orders have their ripple at 0 (or half the rate), where this design puts the gain 1.
          const double edge = ripple == 0.0 ? 1.0 : 100.0 / (100.0 - ripple);
          const double expected = decibels(edge * chebyshevTheory(poles, 0.1, ripple, type, frequency));
          EXPECT_NEAR(decibels(filter.gainAt(frequency)), expected, 0.05)
              << poles << " poles, ripple " << ripple << ", at " << frequency;
        }
      }
    }
  }
}

// The samples themselves, against the recursion written down plainly; lengths around the chunks.
TEST(RecursiveFilters, SamplesFollowTheRecursion) {
  for (const int poles : {1, 2, 4, 5, 8, 16}) {
    const RecursiveFilter design = chebyshevDesign(poles, 0.2, 0.5, PassType::low);
    for (const int32_t frames : {1, 3, 17, 4100, 9000}) {
      const auto wave = noiseWave(2, frames);
      const auto before = noiseWave(2, frames);
      ASSERT_TRUE(chebyshevFilter(*wave, poles, 0.2, 0.5, PassType::low));
      for (int channel = 0; channel < 2; ++channel) {
        std::vector<double> y(static_cast<size_t>(frames));
        for (int32_t n = poles; n < frames; ++n) {
          double sum = 0.0;
          for (int k = 0; k <= poles; ++k) {
            if (n + k < frames)
              sum += design.forward[static_cast<size_t>(k)] * before->sample(n + k, channel);
            if (k > 0) sum += design.feedback[static_cast<size_t>(k)] * y[static_cast<size_t>(n - k)];
          }
          y[static_cast<size_t>(n)] = sum;
        }
        for (int32_t n = 0; n < frames; ++n) {
          ASSERT_NEAR(wave->sample(n, channel), y[static_cast<size_t>(n)], 1e-6)
              << poles << " poles at " << n;
        }
      }
    }
  }
  EXPECT_FALSE(chebyshevFilter(*countingWave(1, 50), 17, 0.1, 0.5, PassType::low));
}

TEST(RecursiveFilters, BandFilterHasItsPeakOrNotchAtTheCentre) {
  const double centre = 1000.0 / 44100.0;
  const RecursiveFilter pass = bandDesign(centre, 0.005, true);
  const RecursiveFilter reject = bandDesign(centre, 0.005, false);
  EXPECT_DOUBLE_EQ(pass.feedback[2], -0.985 * 0.985);
  EXPECT_NEAR(pass.gainAt(centre), 1.0, 1e-3);
  EXPECT_NEAR(reject.gainAt(centre), 0.0, 1e-9);
  EXPECT_LT(pass.gainAt(10 * centre), 0.05);
  EXPECT_NEAR(reject.gainAt(10 * centre), 1.0, 0.02);
}

// ---- Windowed sinc --------------------------------------------------------------------------------------

TEST(FirFilterKernel, HasUnitGainWhereItPasses) {
  FirFilter filter;
  filter.setKernelLength(1001);
  filter.setWindow(WindowKind::blackmanHarris);
  const auto low = filter.kernel();
  filter.setType(FirFilter::highPass);
  const auto high = filter.kernel();
  EXPECT_NEAR(high[500], 1.0 - low[500], 1e-15);
  // The window's main lobe is 4 x rate / taps wide to either side; beyond it nothing is left or missing.
  const double lobe = 4.0 / 1001;
  for (double frequency = 0.0; frequency < 0.5; frequency += 0.0007) {
    const double beyond = frequency - 1000.0 / 44100.0;
    if (beyond > lobe) {
      EXPECT_LT(decibels(gainOfKernel(low, frequency)), -90.0) << frequency;
    } else if (beyond < -lobe) {
      EXPECT_NEAR(gainOfKernel(low, frequency), 1.0, 3e-5) << frequency;
      EXPECT_LT(gainOfKernel(high, frequency), 3e-5) << frequency;
    }
  }
}

TEST(FirFilter, SettersKeepWhatTheyHadInsteadOfNonsense) {
  FirFilter filter;
  filter.setKernelLength(5);
  const auto first = filter.kernel();
  filter.setCutoff(22050.0);
  filter.setCutoff(-1.0);
  filter.setKernelLength(0);
  filter.setChannels(17);
  filter.setSampleRate(0.0);
  EXPECT_EQ(filter.kernel(), first);
  std::vector<float> samples{1, 2, 3, 4};
  EXPECT_EQ(filter.process(samples.data(), 4), -1);
  EXPECT_EQ(filter.process(nullptr, 100), -1);
  EXPECT_EQ(samples, (std::vector<float>{1, 2, 3, 4}));
}

// Against the sum written down plainly: more and fewer channels than lanes, lengths that fill no block,
// kernels of every kind of length.
TEST(FirFilter, SamplesAreTheCentredConvolution) {
  struct Case {
    int channels;
    int32_t frames;
    int32_t taps;
  };
  for (const Case& c : {Case{1, 5000, 100},
                        {2, 30000, 501},
                        {3, 40001, 64},
                        {5, 4000, 33},
                        {16, 3000, 7},
                        {2, 700, 700},
                        {1, 1, 1},
                        {1, 3, 2},
                        {2, 140000, 66000}}) {
    const auto wave = noiseWave(c.channels, c.frames);
    const auto before = noiseWave(c.channels, c.frames);
    FirFilter filter;
    filter.setKernelLength(c.taps);
    filter.setChannels(c.channels);
    filter.setType(FirFilter::highPass);
    filter.gain = 0.5;
    ASSERT_EQ(filter.process(wave->samples(), c.frames), 0);
    const auto kernel = filter.kernel();
    std::mt19937 random(1);
    for (int tries = 0; tries < 300; ++tries) {
      const auto n = static_cast<int32_t>(random() % static_cast<unsigned>(c.frames));
      const auto channel = static_cast<int>(random() % static_cast<unsigned>(c.channels));
      double sum = 0.0;
      for (int32_t k = 0; k < c.taps; ++k) {
        const int64_t from = int64_t{n} - c.taps / 2 + k;
        if (from < 0 || from >= c.frames) continue;
        sum += kernel[static_cast<size_t>(k)] * before->sample(static_cast<int32_t>(from), channel);
      }
      ASSERT_NEAR(wave->sample(n, channel), 0.5 * sum, 1e-6)
          << c.channels << ' ' << c.frames << ' ' << c.taps << " at " << n;
    }
  }
}

}  // namespace
}  // namespace plumetta
