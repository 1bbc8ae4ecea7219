// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace plumetta {

// How a value between samples is found, by the numbers that settings use.
enum class InterpolationKernel {
  linear = 0,
  cubic = 1,
  quadratic = 2,
  cubicThroughFour = 3,
  osculatingSix = 4,
  lagrangeSix = 5,
  bandLimited = 10,  // no polynomial: see resample.h
};

// Each kernel is a structure with the number of neighbouring samples it reads and its value at t (0 to 1)
// between the first of them, x[0], and its successors.

struct NearestLowerKernel {
  static constexpr int kPoints = 1;
  static double at(const double* x, double) { return x[0]; }
};

struct LinearKernel {
  static constexpr int kPoints = 2;
  static double at(const double* x, double t) { return x[0] + (x[1] - x[0]) * t; }
};

// Runs from x[1] to x[2], a frame ahead of the other kernels; kept so.
struct CubicKernel {
  static constexpr int kPoints = 4;
  static double at(const double* x, double t) {
    const double a = x[3] - x[2] - x[0] + x[1];
    return ((a * t + (x[0] - x[1] - a)) * t + (x[2] - x[0])) * t + x[1];
  }
};

// The parabola through three samples, in its second half: from x[1] to x[2].
struct QuadraticKernel {
  static constexpr int kPoints = 3;
  static double at(const double* x, double t) {
    const double u = 1.0 + t;
    return x[0] + (2.0 * x[1] - 1.5 * x[0] - 0.5 * x[2]) * u + (0.5 * (x[2] + x[0]) - x[1]) * u * u;
  }
};

// The cubic through four samples, in its first third: from x[0] to x[1].
struct CubicThroughFourKernel {
  static constexpr int kPoints = 4;
  static double at(const double* x, double t) {
    const double c3 = (3.0 * x[1] + x[3] - 3.0 * x[2] - x[0]) / 6.0;
    const double c2 = (2.0 * x[0] - 5.0 * x[1] + 4.0 * x[2] - x[3]) / 2.0;
    const double c1 = x[1] - x[0] - c2 - c3;
    return ((c3 * t + c2) * t + c1) * t + x[0];
  }
};

// Six points, fifth order, from x[2] to x[3]: the polynomial whose value, slope and curvature at both ends
// are those of the central differences over five points (second-order osculating; O. Niemitalo, Polynomial
// Interpolators for High-Quality Resampling of Oversampled Audio, 2001). The curve and its first two
// derivatives run through every sample without a break; for that it reproduces polynomials up to the fourth
// degree only, and its images lie 3 to 25 dB above those of the kernel below.
struct OsculatingSixKernel {
  static constexpr int kPoints = 6;
  static double slope(const double* x) { return (x[-2] - x[2] + 8.0 * (x[1] - x[-1])) / 12.0; }
  static double curvature(const double* x) {
    return (16.0 * (x[-1] + x[1]) - x[-2] - x[2] - 30.0 * x[0]) / 12.0;
  }
  static double at(const double* x, double t) {
    const double rise = x[3] - x[2];
    const double s0 = slope(x + 2), s1 = slope(x + 3);
    const double b0 = curvature(x + 2), b1 = curvature(x + 3);
    const double c3 = 10.0 * rise - 6.0 * s0 - 4.0 * s1 - 1.5 * b0 + 0.5 * b1;
    const double c4 = -15.0 * rise + 8.0 * s0 + 7.0 * s1 + 1.5 * b0 - b1;
    const double c5 = 6.0 * rise - 3.0 * (s0 + s1) - 0.5 * (b0 - b1);
    return ((((c5 * t + c4) * t + c3) * t + 0.5 * b0) * t + s0) * t + x[2];
  }
};

// Six points, fifth order, from x[2] to x[3]: the polynomial through all six, in Newton's form on the nodes
// -2 ... 3 around x[2]. E. Waring's interpolation formula (Philosophical Transactions 69, 1779), named after
// Lagrange. Reproduces every polynomial up to the fifth degree.
struct LagrangeSixKernel {
  static constexpr int kPoints = 6;
  static double at(const double* x, double t) {
    const double d1 = x[1] - x[0];
    const double d2 = x[2] - 2.0 * x[1] + x[0];
    const double d3 = x[3] - 3.0 * (x[2] - x[1]) - x[0];
    const double d4 = x[4] - 4.0 * (x[3] + x[1]) + 6.0 * x[2] + x[0];
    const double d5 = x[5] - 5.0 * (x[4] - x[1]) + 10.0 * (x[3] - x[2]) - x[0];
    const double u = t + 2.0;
    return x[0] +
           u * (d1 + (u - 1.0) / 2.0 *
                         (d2 + (u - 2.0) / 3.0 * (d3 + (u - 3.0) / 4.0 * (d4 + (u - 4.0) / 5.0 * d5))));
  }
};

}  // namespace plumetta
