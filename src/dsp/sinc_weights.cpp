// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/sinc_weights.h"

#include <cmath>
#include <numbers>
#include <numeric>

namespace plumetta {
namespace {

constexpr int kHalf = BandLimitedWeights::kTaps / 2;
constexpr int64_t kMostFractions = 4096;
constexpr double kPi = std::numbers::pi;

bool isWhole(double rate) { return rate == std::floor(rate) && rate < 4294967296.0; }

}  // namespace

BandLimitedWeights::BandLimitedWeights(double rate, double targetRate) : ratio_(targetRate / rate) {
  for (int k = -kHalf; k < kHalf; ++k) {
    sines_.push_back(std::sin(kPi * ratio_ * k));
    cosines_.push_back(std::cos(kPi * ratio_ * k));
    hannSines_.push_back(std::sin(kPi * k / kHalf));
    hannCosines_.push_back(std::cos(kPi * k / kHalf));
  }
  if (isWhole(rate) && isWhole(targetRate)) {
    const auto from = static_cast<int64_t>(rate);
    const auto to = static_cast<int64_t>(targetRate);
    const int64_t common = std::gcd(from, to);
    period_ = to / common <= kMostFractions ? to / common : 0;
    periodSource_ = from / common;
  }
  table_.resize(static_cast<size_t>(period_ > 0 ? period_ : 1) * kTaps);
  for (int64_t j = 0; j < period_; ++j) {
    const double fraction = static_cast<double>(j * periodSource_ % period_) / static_cast<double>(period_);
    fill(fraction, table_.data() + j * kTaps);
  }
}

int64_t BandLimitedWeights::frameOf(int64_t j) const {
  return period_ > 0 ? j / period_ * periodSource_ + j % period_ * periodSource_ / period_
                     : static_cast<int64_t>(positionOf(j));
}

const float* BandLimitedWeights::weightsOf(int64_t j) {
  if (period_ > 0) return table_.data() + j % period_ * kTaps;
  const double position = positionOf(j);
  fill(position - std::floor(position), table_.data());
  return table_.data();
}

// Sine and cosine of a distance k - f follow from those of k, which stand in tables, and those of f.
void BandLimitedWeights::fill(double fraction, float* weights) const {
  const double sine = std::sin(kPi * ratio_ * fraction);
  const double cosine = std::cos(kPi * ratio_ * fraction);
  const double hannSine = std::sin(kPi * fraction / kHalf);
  const double hannCosine = std::cos(kPi * fraction / kHalf);
  for (size_t i = 0; i < kTaps; ++i) {
    const double distance = static_cast<double>(i) - kHalf - fraction;
    const double hann = 0.5 + 0.5 * (hannCosines_[i] * hannCosine + hannSines_[i] * hannSine);
    const double sinc = (sines_[i] * cosine - cosines_[i] * sine) / (kPi * distance);
    weights[i] = static_cast<float>(distance == 0.0 ? ratio_ * hann : hann * sinc);
  }
}

}  // namespace plumetta
