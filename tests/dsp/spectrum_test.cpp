// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/spectrum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <functional>
#include <limits>
#include <memory>
#include <numbers>

#include "dsp/spectrum_text.h"
#include "dsp/transform.h"

namespace plumetta {
namespace {

using std::numbers::pi;

std::vector<double> noise(size_t count) {
  std::vector<double> values(count);
  uint32_t state = 1;
  for (double& value : values) {
    state = state * 1664525u + 1013904223u;
    value = static_cast<double>(state >> 8) / 8388608.0 - 1.0;
  }
  return values;
}

TEST(Transform, FollowsTheDefinitionInBothDirections) {
  for (const int count : {1, 2, 4, 8, 64}) {
    for (const int direction : {1, -1}) {
      const auto given = noise(2 * static_cast<size_t>(count));
      auto values = given;
      transform(values.data(), count, direction);
      for (int k = 0; k < count; ++k) {
        std::complex<double> sum = 0;
        for (int n = 0; n < count; ++n) {
          const auto at = 2 * static_cast<size_t>(n);
          sum += std::complex(given[at], given[at + 1]) * std::polar(1.0, direction * 2 * pi * k * n / count);
        }
        EXPECT_NEAR(values[2 * static_cast<size_t>(k)], sum.real(), 1e-12);
        EXPECT_NEAR(values[2 * static_cast<size_t>(k) + 1], sum.imag(), 1e-12);
      }
    }
  }
}

// What each channel does at a frame.
using Signal = std::function<double(int32_t frame, int channel)>;

std::unique_ptr<CWave> waveOf(int channels, int32_t frames, const Signal& signal) {
  auto wave = std::make_unique<CWave>();
  wave->create(8000, channels, 32, frames, kFormatFloat);
  for (int32_t f = 0; f < frames; ++f) {
    for (int c = 0; c < channels; ++c) wave->setSample(f, c, static_cast<float>(signal(f, c)));
  }
  return wave;
}

SpectrumRecord spectrumOf(const CWave& wave, FrameRange range, SpectrumSettings settings) {
  return *averagedSpectrum(wave, range, settings, {});
}

// Channel c has a sine at line 16 (c + 1), of amplitude 1 / (c + 1). Where all of them are 0, what is no
// number counts as that too.
TEST(Spectrum, ASineAtALineReadsItsAmplitudeWhateverTheWindow) {
  for (const int channels : {1, 2, 3, 5}) {
    const auto wave = waveOf(
        channels, 4200, [](int32_t f, int c) { return std::sin(2 * pi * 16 * (c + 1) * f / 256) / (c + 1); });
    wave->setSample(256, 0, std::numeric_limits<float>::quiet_NaN());
    wave->setSample(512, channels - 1, std::numeric_limits<float>::infinity());
    for (int kind = 0; kind < kWindowKinds; ++kind) {
      const auto record = spectrumOf(*wave, {64, 4159}, {256, static_cast<WindowKind>(kind)});
      ASSERT_EQ(record.lines, 129);
      EXPECT_EQ(record.hz(32), 1000.0);
      for (int c = 0; c < channels; ++c) {
        EXPECT_NEAR(record.value(16 * (c + 1), c), 1.0 / (c + 1), 1e-3) << windowName(kind);
        EXPECT_LT(record.value(120, c), 1e-3) << windowName(kind);
      }
    }
  }
}

TEST(Spectrum, OfMoreThanOneRoundTellsHowFarItIsAndStops) {
  const int32_t frames = 6000000;
  const auto wave = waveOf(1, frames, [](int32_t f, int) { return f < 8 ? 1.0 : f % 2 == 0 ? 0.5 : -0.5; });
  struct Watch {
    int left;
    float last = 0.0f;
  };
  const auto report = [](float done, void* user) {
    auto& watch = *static_cast<Watch*>(user);
    EXPECT_GT(done, watch.last);
    watch.last = done;
    return --watch.left > 0;
  };
  const SpectrumSettings settings{16, WindowKind::rectangular};
  Watch patient{1000}, hasty{1};
  const auto record = averagedSpectrum(*wave, {8, frames - 1}, settings, {report, &patient});
  ASSERT_TRUE(record);
  // The last block lacks half of its frames: a quarter of the power.
  const double blocks = std::ceil((frames - 8) / 16.0);
  EXPECT_NEAR(record->value(8, 0), 0.5 * std::sqrt((blocks - 1 + 0.25) / blocks), 1e-12);
  EXPECT_LT(patient.left, 999);
  EXPECT_FALSE(averagedSpectrum(*wave, {0, frames - 1}, settings, {report, &hasty}));
  EXPECT_EQ(hasty.left, 0);
}

TEST(Spectrum, OfNothingIsSilence) {
  CWave wave;
  wave.create(8000, 2, 16, 0, kFormatPcm);
  const auto record = spectrumOf(wave, {0, 0}, {16, WindowKind::hanning});
  EXPECT_EQ(record.values, std::vector<double>(2 * 9, 0.0));
}

TEST(SpectrumPeaks, LieBetweenLinesLoudestFirst) {
  // 1003 Hz and 2501 Hz; the third tone hides in the flank of the second.
  const auto wave = waveOf(2, 65536, [](int32_t f, int c) {
    const double t = f / 8000.0;
    return c == 0 ? 0.1 * std::sin(2 * pi * 1003 * t)
                  : 0.8 * std::sin(2 * pi * 2501 * t) + 0.001 * std::sin(2 * pi * 2503 * t);
  });
  const auto record = spectrumOf(*wave, {0, 65535}, {2048, WindowKind::blackmanHarris});
  const auto peaks = findPeaks(record, 30.0, 2);
  ASSERT_EQ(peaks.size(), 2u);
  EXPECT_NEAR(peaks[0].hz, 2501.0, 0.1);
  EXPECT_NEAR(peaks[0].db, -1.94, 0.1);
  EXPECT_EQ(peaks[0].channel, 1);
  EXPECT_NEAR(peaks[1].hz, 1003.0, 0.1);
  EXPECT_NEAR(peaks[1].db, -20.0, 0.1);
  EXPECT_EQ(peaks[1].channel, 0);
  EXPECT_EQ(findPeaks(record, 30.0, 1).size(), 1u);
}

TEST(SpectrumPeaks, StandOutByTheirProminence) {
  const auto decibels = [](std::vector<double> levels) {
    SpectrumRecord record;
    record.channels = 1;
    record.lines = static_cast<int32_t>(levels.size());
    record.stopHz = record.lines - 1;
    for (const double level : levels) record.values.push_back(std::pow(10.0, level / 20.0));
    return record;
  };
  const struct {
    std::vector<double> levels;
    std::vector<double> peaks;
  } cases[] = {
      {{-60, -20, -60}, {1}},
      {{-60, -20, -25, -20, -60}, {1}},       // a dent of 5 dB parts nothing
      {{-60, -20, -30, -10, -60}, {3, 1}},    // one of 10 does
      {{0, -20, -40, -35, -60}, {}},          // neither the first line nor a bump in a slope
      {{-60, -20}, {}},                       // still rising at the end
      {{-50, -45, -50, -50, -30, -50}, {4}},  // too low over its valley
  };
  for (const auto& [levels, lines] : cases) {
    std::vector<double> found;
    for (const SpectrumPeak& peak : findPeaks(decibels(levels), 10.0 - 1e-9, 9)) {
      found.push_back(std::round(peak.hz));
    }
    EXPECT_EQ(found, lines) << levels.size();
  }
}

TEST(NoteName, IsTheNearestNoteWithItsCents) {
  const struct {
    double hz;
    const char* name;
  } cases[] = {{440, "A4"},
               {261.6256, "C4"},
               {440.763, "A4 +3 cents"},
               {439.746, "A4 -1 cent"},
               {880, "A5"},
               {27.5, "A0"},
               {466.1638, "A#4"},
               {453.0, "A#4 -50 cents"},
               {8.1758, "C-1"},
               {12543.85, "G9"},
               {7.9, ""},
               {0, ""},
               {-440, ""},
               {std::nan(""), ""},
               {1e300 * 1e300, ""}};
  for (const auto& [hz, name] : cases) EXPECT_EQ(noteName(hz), name) << hz;
}

SpectrumRecord smallRecord() { return {2, 2, 0.0, 22050.0, 44100.0, {0.5, 0.001, 0.0, -0.0025}}; }

constexpr const char* kSmallText =
    "version=1\nchannel=2\nnumber=2\nfe=44100.000000\nfreqstart=0.000000\nfreqstop=22050.000000\n"
    "mult=1000.000000\n500.00000000 1.00000000 \n0.00000000 -2.50000000 \n";

TEST(SpectrumText, IsWrittenAndReadLineByLine) {
  EXPECT_EQ(spectrumText(smallRecord()), kSmallText);
  SpectrumRecord record;
  ASSERT_TRUE(parseSpectrum(kSmallText, record));
  EXPECT_EQ(record.values, smallRecord().values);
  EXPECT_EQ(record.sampleRate, 44100.0);
  EXPECT_EQ(record.stopHz, 22050.0);
}

TEST(SpectrumText, TakesWhatIsSoundAndRefusesTheRest) {
  const std::string head = "version=1\nchannel=2\nnumber=1\nfe=8\nfreqstart=1\nfreqstop=4\n";
  const std::string longLine = "version=1\nchannel=300\nnumber=1\n\n\n\nmult=1\n";
  std::string manyValues;
  for (int i = 0; i < 300; ++i) manyValues += "0.50000000 ";
  const struct {
    std::string text;
    size_t values;  // 0: refused
  } cases[] = {
      {head + "mult=10\n5 10\n", 2},
      {head + "mult=10\r\n5 10\r\n", 2},
      {head + "no scale\n5 10\n", 2},
      {head + "5 10\n", 2},
      {head + "mult=10\n5 10 7 more\n", 2},
      {head + "mult=10\n  5\t+1e1", 2},
      {longLine + manyValues, 300},
      {head + "mult=10\n5\n", 0},
      {head + "mult=10\n", 0},
      {head + "mult=10\n5 nan\n", 0},
      {head + "mult=10\n5 inf\n", 0},
      {head + "mult=10\n5 1e999\n", 0},
      {head + "mult=10\n5 0,5\n", 0},
      {head + "mult=0\n5 10\n", 0},
      {head + "mult=1e-10\n5 1e300\n", 0},
      {head + "mult=nan\n5 10\n", 0},
      {"version=2\nchannel=1\nnumber=1\n\n\n\nmult=1\n5\n", 0},
      {"version=\nchannel=1\nnumber=1\n\n\n\nmult=1\n5\n", 0},
      {"version=1\n\nnumber=1\n\n\n\nmult=1\n5\n", 0},
      {"version=1\nchannel=1\n\n\n\n\nmult=1\n5\n", 0},
      {"version=1\nchannel=-1\nnumber=-1\n\n\n\nmult=1\n5\n", 0},
      {"version=1\nchannel=0\nnumber=1\n\n\n\nmult=1\n5\n", 0},
      {"version=1\nchannel=2147483647\nnumber=2147483647\n\n\n\nmult=1\n5\n", 0},
      {"version=1\nchannel=4294967297\nnumber=1\n\n\n\nmult=1\n5\n", 0},
      {"", 0},
  };
  for (const auto& [text, values] : cases) {
    SpectrumRecord record = smallRecord();
    EXPECT_EQ(parseSpectrum(text, record), values > 0) << text;
    if (values == 0) {
      EXPECT_EQ(spectrumText(record), kSmallText) << text;
      continue;
    }
    EXPECT_EQ(record.values.size(), values) << text;
    const bool scaled = text.find("mult=10") != std::string::npos || values > 2;
    EXPECT_EQ(record.values[0], scaled ? 0.5 : 5.0) << text;
    // Frequencies that a file doesn't tell stay.
    EXPECT_EQ(record.stopHz, values > 2 ? 22050.0 : 4.0) << text;
  }
}

}  // namespace
}  // namespace plumetta
