// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace plumetta {

// Complex numbers by magnitude and angle, many at a time. Angles are in turns (1 is a full circle), accurate
// to 1e-12. Arrays don't overlap.

// Angles come out between -0.5 and 0.5; that of 0 is 0.
void toPolar(const double* re, const double* im, double* magnitude, double* turns, size_t count);
// Angles may be of any size below 1e9 turns.
void toCartesian(const double* magnitude, const double* turns, double* re, double* im, size_t count);

// The nearest whole number, halves to the even one, for numbers below 2^51: adding and taking away 1.5 x 2^52
// leaves no room for a fraction. Unlike the library's function, every processor can do it on vectors.
inline double nearestWhole(double x) {
  constexpr double kNoFraction = 6755399441055744.0;
  return (x + kNoFraction) - kNoFraction;
}

}  // namespace plumetta
