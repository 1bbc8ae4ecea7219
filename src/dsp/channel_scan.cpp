// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/channel_scan.h"

#include <emmintrin.h>

#include <algorithm>

#include "core/cpu_variants.h"
#include "core/wave.h"

namespace plumetta {
namespace {

// Interleaved samples are read as lanes, sample i on lane i modulo the lanes; where the lanes are a multiple
// of the channels, each lane belongs to one channel, and a run of lanes is a vector.
constexpr size_t kLanes = 16;
// For channel counts that don't divide the lanes: this many frames side by side.
constexpr size_t kFramesAbreast = 4;
constexpr size_t kMostLanes = kFramesAbreast * kMaxChannels;

// Written out because compilers may not turn a comparison that minds NaN into a maximum by themselves; the
// instruction keeps its second operand then, which is just what is wanted.
void fixedExtremes(const float* samples, size_t count, float* largest, float* smallest) {
  constexpr size_t kVectors = kLanes / 4;
  __m128 high[kVectors];
  __m128 low[kVectors];
  for (size_t v = 0; v < kVectors; ++v) {
    high[v] = _mm_loadu_ps(largest + 4 * v);
    low[v] = _mm_loadu_ps(smallest + 4 * v);
  }
  for (size_t i = 0; i < count; i += kLanes) {
    for (size_t v = 0; v < kVectors; ++v) {
      const __m128 x = _mm_loadu_ps(samples + i + 4 * v);
      high[v] = _mm_max_ps(x, high[v]);
      low[v] = _mm_min_ps(x, low[v]);
    }
  }
  for (size_t v = 0; v < kVectors; ++v) {
    _mm_storeu_ps(largest + 4 * v, high[v]);
    _mm_storeu_ps(smallest + 4 * v, low[v]);
  }
}

PLUMETTA_WIDE_VECTORS void anyExtremes(const float* samples, size_t count, size_t lanes, float* largest,
                                       float* smallest) {
  for (size_t i = 0; i < count; i += lanes) {
    for (size_t lane = 0; lane < lanes; ++lane) {
      const float x = samples[i + lane];
      largest[lane] = x > largest[lane] ? x : largest[lane];
      smallest[lane] = x < smallest[lane] ? x : smallest[lane];
    }
  }
}

PLUMETTA_WIDE_VECTORS void fixedSumsAlone(const float* samples, size_t count, double* sums) {
  double sum[kLanes];
  std::copy_n(sums, kLanes, sum);
  for (size_t i = 0; i < count; i += kLanes) {
    for (size_t lane = 0; lane < kLanes; ++lane) sum[lane] += samples[i + lane];
  }
  std::copy_n(sum, kLanes, sums);
}

PLUMETTA_WIDE_VECTORS void fixedSums(const float* samples, size_t count, double* sums, double* squares) {
  double sum[kLanes];
  double square[kLanes];
  std::copy_n(sums, kLanes, sum);
  std::copy_n(squares, kLanes, square);
  for (size_t i = 0; i < count; i += kLanes) {
    for (size_t lane = 0; lane < kLanes; ++lane) {
      const double x = samples[i + lane];
      sum[lane] += x;
      square[lane] += x * x;
    }
  }
  std::copy_n(sum, kLanes, sums);
  std::copy_n(square, kLanes, squares);
}

PLUMETTA_WIDE_VECTORS void anySums(const float* samples, size_t count, size_t lanes, double* sums,
                                   double* squares) {
  for (size_t i = 0; i < count; i += lanes) {
    for (size_t lane = 0; lane < lanes; ++lane) {
      const double x = samples[i + lane];
      sums[lane] += x;
      squares[lane] += x * x;
    }
  }
}

bool lanesFit(size_t channels) { return kLanes % channels == 0; }
size_t lanesFor(size_t channels) { return lanesFit(channels) ? kLanes : kFramesAbreast * channels; }

}  // namespace

void scanExtremes(const float* samples, size_t frames, size_t channels, Extremes* extremes) {
  float largest[kMostLanes];
  float smallest[kMostLanes];
  const size_t lanes = lanesFor(channels);
  std::fill_n(largest, lanes, Extremes{}.largest);
  std::fill_n(smallest, lanes, Extremes{}.smallest);
  const size_t count = frames * channels;
  const size_t whole = count - count % lanes;
  if (lanesFit(channels)) {
    fixedExtremes(samples, whole, largest, smallest);
  } else {
    anyExtremes(samples, whole, lanes, largest, smallest);
  }
  anyExtremes(samples + whole, count > whole ? 1 : 0, count - whole, largest, smallest);
  for (size_t lane = 0; lane < lanes; ++lane) extremes[lane % channels].take({largest[lane], smallest[lane]});
}

void scanSums(const float* samples, size_t frames, size_t channels, double* sums, double* squares) {
  double sum[kMostLanes] = {};
  double square[kMostLanes] = {};
  const size_t lanes = lanesFor(channels);
  const size_t count = frames * channels;
  const size_t whole = count - count % lanes;
  if (lanesFit(channels) && squares == nullptr) {
    fixedSumsAlone(samples, whole, sum);
  } else if (lanesFit(channels)) {
    fixedSums(samples, whole, sum, square);
  } else {
    anySums(samples, whole, lanes, sum, square);
  }
  anySums(samples + whole, count > whole ? 1 : 0, count - whole, sum, square);
  for (size_t lane = 0; lane < lanes; ++lane) {
    sums[lane % channels] += sum[lane];
    if (squares != nullptr) squares[lane % channels] += square[lane];
  }
}

// Zero times anything finite is zero; infinity and what is not a number make the sum something else.
PLUMETTA_WIDE_VECTORS bool allFinite(const float* samples, size_t count) {
  float sums[kLanes] = {};
  size_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    for (size_t lane = 0; lane < kLanes; ++lane) sums[lane] += samples[i + lane] * 0.0f;
  }
  for (size_t lane = 0; i < count; ++i, ++lane) sums[lane] += samples[i] * 0.0f;
  return std::all_of(sums, sums + kLanes, [](float sum) { return sum == 0.0f; });
}

}  // namespace plumetta
