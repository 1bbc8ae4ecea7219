// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace plumetta {

// The largest and the smallest sample; the starting values stand for no sample at all. What is not a number
// is passed over.
struct Extremes {
  float largest = -1000.0f;
  float smallest = 1000.0f;

  void take(const Extremes& other) {
    largest = other.largest > largest ? other.largest : largest;
    smallest = other.smallest < smallest ? other.smallest : smallest;
  }
  float peak() const { return largest > -smallest ? largest : -smallest; }
};

// Widens the extremes of each channel by those of frames × channels interleaved samples.
void scanExtremes(const float* samples, size_t frames, size_t channels, Extremes* extremes);

// Adds the samples of each channel, and their squares where `squares` isn't null, in double precision.
void scanSums(const float* samples, size_t frames, size_t channels, double* sums, double* squares);

// Whether no sample is infinite or not a number.
bool allFinite(const float* samples, size_t count);

}  // namespace plumetta
