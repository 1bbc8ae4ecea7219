// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <span>
#include <vector>

namespace plumetta {

// The spectra of two channels as they are at this moment: levels rise at once and fall evenly. Full scale is
// a sine of amplitude 1 at 0 dB. UI thread.
class LiveSpectrum {
 public:
  static constexpr int kFrames = 4096;
  static constexpr size_t kLines = kFrames / 2 + 1;  // from 0 Hz to half the rate
  static constexpr double kFloorDb = -120.0;
  static constexpr double kFallDbPerSecond = 48.0;

  LiveSpectrum();

  // The newest kFrames frames of each channel, `seconds` after the last call.
  void advance(std::span<const float> left, std::span<const float> right, double seconds);
  // kLines levels in dB of channel 0 or 1.
  std::span<const float> levels(int channel) const { return levels_[static_cast<size_t>(channel)]; }
  bool falling() const;

 private:
  void show(size_t channel, size_t line, double power, double fallDb);

  std::vector<double> window_;
  double scale_;                // from the transform's power to that of a sine of amplitude 1
  std::vector<double> values_;  // complex: the left channel real, the right one imaginary
  std::array<std::vector<float>, 2> levels_;
};

}  // namespace plumetta
