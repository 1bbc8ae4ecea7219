// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/peak_pyramid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace plumetta {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// Both comparisons are false for what is not a number, so that it never gets in; written the way in which a
// compiler finds one vector instruction.
inline float lower(float x, float smallest) { return x < smallest ? x : smallest; }
inline float upper(float x, float largest) { return x > largest ? x : largest; }
inline float squareOfNumber(float x) { return x == x ? x * x : 0.0f; }

// Takes `rows` × `lanes` samples into accumulators that each see every lanes-th sample. The number of lanes
// is a multiple of the channel count and of a vector, so that a lane belongs to one channel.
template <int lanes>
struct LaneSums {
  std::array<float, lanes> min, max, energy;

  void take(const float* samples, int rows) {
    float low[lanes], high[lanes], sum[lanes];
    for (int i = 0; i < lanes; ++i) low[i] = kInfinity, high[i] = -kInfinity, sum[i] = 0;
    for (int row = 0; row < rows; ++row, samples += lanes) {
      for (int i = 0; i < lanes; ++i) {
        const float x = samples[i];
        low[i] = lower(x, low[i]);
        high[i] = upper(x, high[i]);
        sum[i] += x * x;
      }
    }
    std::copy_n(low, lanes, min.begin());
    std::copy_n(high, lanes, max.begin());
    std::copy_n(sum, lanes, energy.begin());
  }

  // Brings all frames of a row together in its first `channels` lanes; a row holds a power of two of them.
  template <int channels>
  void fold() {
    for (int width = lanes / 2; width >= channels; width /= 2) {
      for (int i = 0; i < width; ++i) {
        min[i] = lower(min[i + width], min[i]);
        max[i] = upper(max[i + width], max[i]);
        energy[i] += energy[i + width];
      }
    }
  }
};

struct RangeSums {
  float min = kInfinity;
  float max = -kInfinity;
  double energy = 0;
};

// One channel of `frames` frames, in four independent chains.
RangeSums takeStrided(const float* samples, int64_t frames, int channels) {
  constexpr int kChains = 4;
  std::array<float, kChains> low, high, sum{};
  low.fill(kInfinity);
  high.fill(-kInfinity);
  int64_t f = 0;
  for (; f + kChains <= frames; f += kChains) {
    for (int i = 0; i < kChains; ++i) {
      const float x = samples[(f + i) * channels];
      low[i] = lower(x, low[i]);
      high[i] = upper(x, high[i]);
      sum[i] += squareOfNumber(x);
    }
  }
  const float* rest = samples + f * channels;
  for (int64_t left = frames - f; left > 0; --left, rest += channels) {
    const float x = *rest;
    low[0] = lower(x, low[0]);
    high[0] = upper(x, high[0]);
    sum[0] += squareOfNumber(x);
  }
  RangeSums all;
  for (int i = 0; i < kChains; ++i) {
    all.min = lower(low[i], all.min);
    all.max = upper(high[i], all.max);
    all.energy += sum[i];
  }
  return all;
}

// The bins of `count` whole groups of 256 frames.
template <int channels, typename Bin>
void wholeBins(const float* samples, int64_t count, Bin* bins) {
  constexpr int kVector = 4;
  constexpr int kCommon = std::lcm(channels, kVector);
  // Two vectors hide the latency of an addition and leave the sums in registers.
  constexpr int kLanes = std::max(kCommon, 2 * kVector);
  constexpr int kRows = PeakPyramid::kBaseFrames / (kLanes / channels);
  LaneSums<kLanes> sums;
  for (int64_t b = 0; b < count; ++b, bins += channels) {
    const float* from = samples + b * PeakPyramid::kBaseFrames * channels;
    sums.take(from, kRows);
    sums.template fold<channels>();
    for (int c = 0; c < channels; ++c) {
      bins[c] = {sums.min[c], sums.max[c], sums.energy[c]};
      if (!std::isnan(sums.energy[c])) continue;
      const RangeSums careful = takeStrided(from + c, PeakPyramid::kBaseFrames, channels);
      bins[c].energy = static_cast<float>(careful.energy);
    }
  }
}

template <typename Bin, int... counts>
void wholeBinsOf(int channels, const float* samples, int64_t count, Bin* bins,
                 std::integer_sequence<int, counts...>) {
  (void)((channels == counts + 1 && (wholeBins<counts + 1>(samples, count, bins), true)) || ...);
}

PeakColumn asColumn(const RangeSums& sums, int64_t frames) {
  if (sums.min > sums.max || frames <= 0) return {};
  return {sums.min, sums.max, static_cast<float>(std::sqrt(sums.energy / static_cast<double>(frames)))};
}

}  // namespace

void PeakPyramid::rebuildFrom(const CWave& wave, int32_t firstChangedFrame) {
  int64_t firstBin = firstChangedFrame / kBaseFrames;
  if (wave.channels() != channels_) firstBin = 0;
  // The last bin of the last build may have been cut short by the end.
  firstBin = std::max<int64_t>(
      0, std::min<int64_t>({firstBin, frames_ / kBaseFrames, int64_t{wave.frames()} / kBaseFrames}));
  channels_ = wave.channels();
  frames_ = wave.frames();

  size_t levels = 0;
  for (int64_t width = kBaseFrames; frames_ > 0; width *= kFanOut, firstBin /= kFanOut) {
    if (levels_.size() <= levels) levels_.emplace_back();
    const int64_t bins = (frames_ + width - 1) / width;
    levels_[levels].framesPerBin = width;
    levels_[levels].bins.resize(static_cast<size_t>(bins * channels_));
    if (levels == 0) {
      buildBase(wave, firstBin);
    } else {
      buildLevel(levels, firstBin);
    }
    ++levels;
    if (bins == 1) break;
  }
  levels_.resize(levels);
}

void PeakPyramid::buildBase(const CWave& wave, int64_t firstBin) {
  std::vector<Bin>& bins = levels_.front().bins;
  const int64_t whole = frames_ / kBaseFrames;
  const float* from = wave.samples() + firstBin * kBaseFrames * channels_;
  wholeBinsOf(channels_, from, whole - firstBin, bins.data() + firstBin * channels_,
              std::make_integer_sequence<int, kMaxChannels>{});
  const int64_t rest = frames_ - whole * kBaseFrames;
  for (int c = 0; rest > 0 && c < channels_; ++c) {
    const auto sums = takeStrided(wave.samples() + whole * kBaseFrames * channels_ + c, rest, channels_);
    bins[static_cast<size_t>(whole * channels_ + c)] = {sums.min, sums.max, static_cast<float>(sums.energy)};
  }
}

void PeakPyramid::buildLevel(size_t level, int64_t firstBin) {
  const std::vector<Bin>& below = levels_[level - 1].bins;
  std::vector<Bin>& bins = levels_[level].bins;
  const auto stride = static_cast<size_t>(channels_);
  for (size_t i = static_cast<size_t>(firstBin) * stride; i < bins.size(); ++i) {
    Bin sum{kInfinity, -kInfinity, 0};
    const size_t first = i / stride * kFanOut * stride + i % stride;
    for (size_t k = 0; k < kFanOut && first + k * stride < below.size(); ++k) {
      const Bin& part = below[first + k * stride];
      sum.min = lower(part.min, sum.min);
      sum.max = upper(part.max, sum.max);
      sum.energy += part.energy;
    }
    bins[i] = sum;
  }
}

void PeakPyramid::columns(const CWave& wave, int channel, double firstFrame, double framesPerPixel,
                          std::span<PeakColumn> out) const {
  const Level* level = nullptr;
  for (const Level& candidate : levels_) {
    // Four bins or more to a column keep its edges true; the base has to do with fewer.
    const int64_t wanted = candidate.framesPerBin * (&candidate == &levels_.front() ? 1 : kFanOut);
    if (static_cast<double>(wanted) <= framesPerPixel) level = &candidate;
  }
  const int64_t unit = level != nullptr ? level->framesPerBin : 1;
  // The first bin, or frame, at or behind a column's left edge.
  const auto edge = [&](double column) {
    const double at = std::ceil((firstFrame + column * framesPerPixel) / static_cast<double>(unit));
    return static_cast<int64_t>(std::clamp(at, -1.0, static_cast<double>(frames_) + 1.0));
  };
  int64_t from = edge(0);
  for (size_t i = 0; i < out.size(); ++i) {
    const int64_t to = edge(static_cast<double>(i + 1));
    const int64_t first = to > from ? from : from - 1;
    out[i] = level != nullptr ? columnFromBins(*level, channel, first, to)
                              : columnFromSamples(wave, channel, first, to);
    from = to;
  }
}

PeakColumn PeakPyramid::columnFromSamples(const CWave& wave, int channel, int64_t from, int64_t to) const {
  from = std::max<int64_t>(from, 0);
  to = std::min(to, frames_);
  if (from >= to || channel < 0 || channel >= channels_) return {};
  return asColumn(takeStrided(wave.samples() + from * channels_ + channel, to - from, channels_), to - from);
}

PeakColumn PeakPyramid::columnFromBins(const Level& level, int channel, int64_t from, int64_t to) const {
  from = std::max<int64_t>(from, 0);
  to = std::min(to, static_cast<int64_t>(level.bins.size()) / channels_);
  if (from >= to || channel < 0 || channel >= channels_) return {};
  RangeSums sums;
  for (int64_t b = from; b < to; ++b) {
    const Bin& bin = level.bins[static_cast<size_t>(b * channels_ + channel)];
    sums.min = lower(bin.min, sums.min);
    sums.max = upper(bin.max, sums.max);
    sums.energy += bin.energy;
  }
  return asColumn(sums, std::min(to * level.framesPerBin, frames_) - from * level.framesPerBin);
}

size_t PeakPyramid::memoryBytes() const {
  size_t bytes = 0;
  for (const Level& level : levels_) bytes += level.bins.capacity() * sizeof(Bin);
  return bytes;
}

}  // namespace plumetta
