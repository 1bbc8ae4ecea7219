// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <optional>

namespace plumetta {

// The tempo at which somebody taps: the mean of the latest intervals.
class TapTempo {
 public:
  // A tap at this time; later ones have later times. Beats a minute from the second tap on; a pause of more
  // than two seconds begins anew.
  std::optional<double> tap(double seconds) {
    constexpr double kPauseSeconds = 2.0;
    constexpr size_t kIntervals = 8;
    if (!taps_.empty() && seconds - taps_.back() > kPauseSeconds) taps_.clear();
    taps_.push_back(seconds);
    if (taps_.size() > kIntervals + 1) taps_.pop_front();
    const double spread = taps_.back() - taps_.front();
    if (spread <= 0) return std::nullopt;
    return 60.0 * static_cast<double>(taps_.size() - 1) / spread;
  }

 private:
  std::deque<double> taps_;
};

}  // namespace plumetta
