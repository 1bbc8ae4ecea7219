// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/stereo_figures.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace plumetta {
namespace {

// The part of the peak that a signal must have fallen below zero: noise about zero is no start of a period.
constexpr float kArmingPart = 0.1f;

}  // namespace

size_t triggerFrame(std::span<const float> signal, size_t frames) {
  if (frames >= signal.size()) return 0;
  const size_t last = signal.size() - frames;
  const auto [lowest, highest] = std::minmax_element(signal.begin(), signal.end());
  const float armingLevel = -kArmingPart * std::max(-*lowest, *highest);
  size_t found = last;
  bool armed = false;
  for (size_t i = 0; i <= last; ++i) {
    if (signal[i] < 0.0f) {
      armed |= signal[i] <= armingLevel;
    } else if (armed) {
      found = i;
      armed = false;
    }
  }
  return found;
}

double correlation(std::span<const float> left, std::span<const float> right) {
  double both = 0, ofLeft = 0, ofRight = 0;
  for (size_t i = 0; i < left.size(); ++i) {
    both += double{left[i]} * right[i];
    ofLeft += double{left[i]} * left[i];
    ofRight += double{right[i]} * right[i];
  }
  const double scale = std::sqrt(ofLeft) * std::sqrt(ofRight);
  return scale > 0 ? std::clamp(both / scale, -1.0, 1.0) : 0.0;
}

StereoPoint stereoPoint(float left, float right) {
  constexpr double kTurn = 1.0 / std::numbers::sqrt2;
  return {(double{right} - left) * kTurn, (double{left} + right) * kTurn};
}

}  // namespace plumetta
