// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/fir_filter.h"

#include <cmath>
#include <new>
#include <numbers>
#include <stdexcept>

#include "core/wave.h"
#include "dsp/block_convolver.h"

namespace plumetta {

void FirFilter::setCutoff(double hz) {
  if (hz > 0.0 && hz < sampleRate_ / 2.0) cutoffHz_ = hz;
}

void FirFilter::setSampleRate(double hz) {
  if (hz != 0.0) sampleRate_ = hz;
}

void FirFilter::setKernelLength(int32_t taps) {
  if (taps > 0) taps_ = taps;
}

void FirFilter::setChannels(int32_t channels) {
  if (channels >= 1 && channels <= kMaxChannels) channels_ = channels;
}

std::vector<double> FirFilter::kernel() const {
  std::vector<double> h(static_cast<size_t>(taps_));
  makeWindow(h.data(), taps_, window_);
  const int32_t middle = taps_ / 2;
  const double angle = 2.0 * std::numbers::pi * cutoffHz_ / sampleRate_;
  double sum = 0.0;
  for (int32_t i = 0; i < taps_; ++i) {
    double& tap = h[static_cast<size_t>(i)];
    tap *= i == middle ? angle : std::sin(angle * (i - middle)) / (i - middle);
    sum += tap;
  }
  for (double& tap : h) tap = type_ == highPass ? -tap / sum : tap / sum;
  if (type_ == highPass) h[static_cast<size_t>(middle)] += 1.0;
  return h;
}

int FirFilter::process(float* samples, int32_t frames, const Between& between) const {
  if (samples == nullptr || frames < taps_) return -1;
  try {
    std::vector<double> taps = kernel();
    for (double& tap : taps) {
      tap *= gain;
      if (!std::isfinite(tap)) return -1;
    }
    return BlockConvolver(taps, channels_).process(samples, frames, between) ? 0 : 1;
  } catch (const std::bad_alloc&) {
    return -1;
  } catch (const std::length_error&) {
    return -1;
  }
}

double gainOfKernel(const std::vector<double>& kernel, double frequency) {
  double re = 0.0;
  double im = 0.0;
  for (size_t k = 0; k < kernel.size(); ++k) {
    const double angle = 2.0 * std::numbers::pi * frequency * static_cast<double>(k);
    re += kernel[k] * std::cos(angle);
    im += kernel[k] * std::sin(angle);
  }
  return std::hypot(re, im);
}

}  // namespace plumetta
