// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/live_spectrum.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "dsp/transform.h"
#include "dsp/window_function.h"

namespace plumetta {

LiveSpectrum::LiveSpectrum() : window_(kFrames), values_(size_t{2} * kFrames) {
  makeWindow(window_.data(), kFrames, WindowKind::hanning);
  const double sum = std::accumulate(window_.begin(), window_.end(), 0.0);
  scale_ = 4.0 / (sum * sum);  // half of a sine's amplitude stands in each of its two lines
  for (auto& levels : levels_) levels.assign(kLines, static_cast<float>(kFloorDb));
}

// Both real channels go through one complex transform and come apart as its even and its odd half.
void LiveSpectrum::advance(std::span<const float> left, std::span<const float> right, double seconds) {
  for (size_t i = 0; i < kFrames; ++i) {
    values_[2 * i] = window_[i] * left[i];
    values_[2 * i + 1] = window_[i] * right[i];
  }
  transform(values_.data(), kFrames, -1);
  const double fallDb = kFallDbPerSecond * seconds;
  for (size_t k = 0; k < kLines; ++k) {
    const double* here = &values_[2 * k];
    const double* twin = &values_[2 * ((kFrames - k) % kFrames)];
    const double evenRe = (here[0] + twin[0]) / 2, evenIm = (here[1] - twin[1]) / 2;
    const double oddRe = (here[1] + twin[1]) / 2, oddIm = (twin[0] - here[0]) / 2;
    show(0, k, evenRe * evenRe + evenIm * evenIm, fallDb);
    show(1, k, oddRe * oddRe + oddIm * oddIm, fallDb);
  }
}

void LiveSpectrum::show(size_t channel, size_t line, double power, double fallDb) {
  // A constant and half the rate have no twin to share with.
  const double own = line == 0 || line == kLines - 1 ? scale_ / 4 : scale_;
  const double db = power > 0 ? 10.0 * std::log10(power * own) : kFloorDb;
  float& level = levels_[channel][line];
  level = static_cast<float>(std::max({db, level - fallDb, kFloorDb}));
}

bool LiveSpectrum::falling() const {
  const auto shown = [](float db) { return db > static_cast<float>(kFloorDb); };
  return std::any_of(levels_[0].begin(), levels_[0].end(), shown) ||
         std::any_of(levels_[1].begin(), levels_[1].end(), shown);
}

}  // namespace plumetta
