// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace plumetta {

// Weights of the band-limited interpolation to a lower rate: a sinc as wide as the new band asks, over the
// 200 taps around a position, under a Hann weight that spans them. At many pairs of rates the positions come
// back to the same few fractions; their weights are then computed once.
class BandLimitedWeights {
 public:
  static constexpr int kTaps = 200;

  // `ratio`: new rate ÷ old rate, below 1. Throws std::bad_alloc.
  BandLimitedWeights(double rate, double targetRate);

  double ratio() const { return ratio_; }
  // For output frame j: where it stands between source frames, as integer and fraction.
  int64_t frameOf(int64_t j) const;
  // The kTaps weights for output frame j: the first is that of source frame frameOf(j) - kTaps / 2. Valid
  // until the next call. For one thread.
  const float* weightsOf(int64_t j);

 private:
  double positionOf(int64_t j) const { return static_cast<double>(j) / ratio_; }
  void fill(double fraction, float* weights) const;

  double ratio_;
  int64_t period_ = 0;        // output frames after which the fractions come back; 0 for too many
  int64_t periodSource_ = 0;  // source frames in that time
  std::vector<double> sines_, cosines_, hannSines_, hannCosines_;  // at whole distances, a tap each
  std::vector<float> table_;                                       // period_ × kTaps
};

}  // namespace plumetta
