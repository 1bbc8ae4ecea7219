// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/onsets.h"

#include <algorithm>
#include <cmath>

namespace plumetta {
namespace {

constexpr double kWindowSeconds = 0.01;
constexpr size_t kWindowsBefore = 8;
constexpr size_t kWindowsApart = 5;
constexpr double kQuietestPower = 1e-6;  // -60 dB
// A sound starts where a sample first reaches this part of its window's peak.
constexpr float kStartOfRise = 0.1f;

// The mean square of each window over all channels.
std::vector<double> windowPowers(const CWave& wave, FrameRange range, int32_t window) {
  std::vector<double> powers;
  const auto channels = static_cast<size_t>(wave.channels());
  for (int64_t first = range.first; first + window <= static_cast<int64_t>(range.last) + 1; first += window) {
    const float* samples = wave.samples() + static_cast<size_t>(first) * channels;
    double sum = 0;
    for (size_t i = 0; i < static_cast<size_t>(window) * channels; ++i) {
      sum += static_cast<double>(samples[i]) * samples[i];
    }
    powers.push_back(sum / (static_cast<double>(window) * static_cast<double>(channels)));
  }
  return powers;
}

// The loudest sample of a frame.
float frameLevel(const CWave& wave, int32_t frame) {
  float level = 0;
  for (int c = 0; c < wave.channels(); ++c) level = std::max(level, std::fabs(wave.sample(frame, c)));
  return level;
}

int32_t startOfRise(const CWave& wave, int32_t first, int32_t window) {
  float peak = 0;
  for (int32_t f = first; f < first + window; ++f) peak = std::max(peak, frameLevel(wave, f));
  int32_t frame = first;
  while (frameLevel(wave, frame) < peak * kStartOfRise) ++frame;
  return frame;
}

}  // namespace

std::vector<int32_t> findOnsets(const CWave& wave, FrameRange range, double riseDb) {
  range = range.ordered();
  std::vector<int32_t> onsets;
  const auto window = std::max(1, static_cast<int32_t>(std::lround(wave.sampleRate() * kWindowSeconds)));
  const auto powers = windowPowers(wave, range, window);
  const double ratio = std::pow(10.0, riseDb / 10.0);
  size_t next = 0;  // the first window that may begin another sound
  for (size_t w = 0; w < powers.size(); ++w) {
    double before = 0;
    const size_t from = w > kWindowsBefore ? w - kWindowsBefore : 0;
    for (size_t i = from; i < w; ++i) before += powers[i] / static_cast<double>(w - from);
    if (w < next || powers[w] < kQuietestPower || powers[w] < ratio * before) continue;
    onsets.push_back(startOfRise(wave, range.first + static_cast<int32_t>(w) * window, window));
    next = w + kWindowsApart;
  }
  return onsets;
}

}  // namespace plumetta
