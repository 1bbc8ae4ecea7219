// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/transform.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace plumetta {
namespace {

// The first and the last index are their own mirror images.
void reverseBits(double* values, int count) {
  for (int k = 1; k < count - 1; ++k) {
    int reversed = 0;
    for (int bit = 1, mirrored = count / 2; bit < count; bit *= 2, mirrored /= 2) {
      if ((k & bit) != 0) reversed |= mirrored;
    }
    if (k >= reversed) continue;
    std::swap(values[2 * k], values[2 * reversed]);
    std::swap(values[2 * k + 1], values[2 * reversed + 1]);
  }
}

// Replaces a and b by a + w b and a - w b.
void butterfly(double* a, double* b, double wr, double wi) {
  const double re = wr * b[0] - wi * b[1];
  const double im = wr * b[1] + wi * b[0];
  b[0] = a[0] - re;
  b[1] = a[1] - im;
  a[0] += re;
  a[1] += im;
}

}  // namespace

void transform(double* values, int count, int direction) {
  reverseBits(values, count);
  const int stages = static_cast<int>(std::log(static_cast<double>(count)) / std::numbers::ln2);
  for (int stage = 1; stage <= stages; ++stage) {
    const int span = 1 << stage;
    const double angle = 2.0 * std::numbers::pi / span;
    const double c = std::cos(angle);
    const double t = direction * std::sin(angle);
    double wr = 1.0, wi = 0.0;
    for (int group = 0; group < span / 2; ++group) {
      for (int a = group; a < count; a += span) {
        butterfly(values + 2 * a, values + 2 * (a + span / 2), wr, wi);
      }
      const double before = wr;
      wr = wr * c - wi * t;
      wi = before * t + wi * c;
    }
  }
}

}  // namespace plumetta
