// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/polar.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/cpu_variants.h"

namespace plumetta {
namespace {

// The arc tangent in turns up to tan(pi / 8), as a times a polynomial in a^2: least squares on Chebyshev's
// nodes, error below 5e-14.
inline double arcTangent(double a) {
  const double u = a * a;
  double p = -0.00599965886309934;
  p = p * u + 0.011103825190208581;
  p = p * u - 0.014313057549347814;
  p = p * u + 0.0176718147709267;
  p = p * u - 0.02273590578804135;
  p = p * u + 0.03183097776421702;
  p = p * u - 0.05305164760971214;
  p = p * u + 0.15915494309179187;
  return p * a;
}

}  // namespace

// The first octant's arc tangent, halved once more, and mirrored to where the number stands.
PLUMETTA_WIDE_VECTORS
void toPolar(const double* __restrict re, const double* __restrict im, double* __restrict magnitude,
             double* __restrict turns, size_t count) {
  constexpr double kHalfOctant = 0.41421356237309503;  // tan(pi / 8)
  constexpr double kTiny = 1e-300;                     // keeps 0 / 0 out
  for (size_t i = 0; i < count; ++i) {
    const double x = std::fabs(re[i]);
    const double y = std::fabs(im[i]);
    const double larger = x > y ? x : y;
    const double smaller = x > y ? y : x;
    const double ratio = smaller / (larger + kTiny);
    const double turned = (ratio - 1.0) / (ratio + 1.0);
    const bool beyond = ratio > kHalfOctant;
    const double first = arcTangent(beyond ? turned : ratio) + (beyond ? 0.125 : 0.0);
    const double quarter = y > x ? 0.25 - first : first;
    const double half = re[i] < 0.0 ? 0.5 - quarter : quarter;
    turns[i] = im[i] < 0.0 ? -half : half;
    magnitude[i] = std::sqrt(x * x + y * y);
  }
}

// Sine and cosine by their series within an eighth of a turn around the nearest quarter.
PLUMETTA_WIDE_VECTORS
void toCartesian(const double* __restrict magnitude, const double* __restrict turns, double* __restrict re,
                 double* __restrict im, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const double quarters = nearestWhole(4.0 * turns[i]);
    const double r = (turns[i] - 0.25 * quarters) * (2.0 * std::numbers::pi);
    const double u = r * r;
    const double sine =
        r * (1.0 + u * (-1.0 / 6 + u * (1.0 / 120 + u * (-1.0 / 5040 + u * (1.0 / 362880 - u / 39916800)))));
    const double cosine =
        1.0 + u * (-0.5 + u * (1.0 / 24 +
                               u * (-1.0 / 720 + u * (1.0 / 40320 + u * (-1.0 / 3628800 + u / 479001600)))));
    const double quadrant = quarters - 4.0 * nearestWhole(0.25 * quarters);  // -2 ... 2
    const bool crosswise = std::fabs(quadrant) == 1.0;
    const bool opposite = std::fabs(quadrant) == 2.0;
    const double c = crosswise ? -quadrant * sine : opposite ? -cosine : cosine;
    const double s = crosswise ? quadrant * cosine : opposite ? -sine : sine;
    re[i] = magnitude[i] * c;
    im[i] = magnitude[i] * s;
  }
}

}  // namespace plumetta
