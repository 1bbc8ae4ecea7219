// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace plumetta {

// A stretch of frequencies along an axis. A logarithmic one begins above 0 Hz.
struct FrequencyAxis {
  double lowHz = 20.0;
  double highHz = 20000.0;
  bool logarithmic = true;

  // 0 at the low end, 1 at the high one; minus infinity for 0 Hz on a logarithmic axis.
  double fraction(double hz) const;
  double hz(double fraction) const;
  // Shows 1 / factor of the stretch, the frequency at `fraction` staying where it is; within `whole`.
  FrequencyAxis zoomed(double fraction, double factor, const FrequencyAxis& whole) const;
  // Moved by a part of its length; within `whole`.
  FrequencyAxis moved(double fractions, const FrequencyAxis& whole) const;

  bool operator==(const FrequencyAxis&) const = default;
};

struct FrequencyTick {
  double hz;
  std::string label;  // empty for a small tick
};

// Ticks for an axis of this many pixels, labels at least `minimumPixels` apart.
std::vector<FrequencyTick> frequencyTicks(const FrequencyAxis& axis, double pixels, double minimumPixels);

}  // namespace plumetta
