// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/window_function.h"

#include <array>
#include <cmath>
#include <cstring>
#include <numbers>

namespace plumetta {
namespace {

constexpr std::array<const char*, kWindowKinds> kNames{
    "Rectangular",      "Bartlett",     "Hamming",    "Blackmann",   "Hanning",
    "Blackmann-Harris", "Gaussian 2.5", "Gaussian 5", "Gaussian 10", "Papoulis",
};

// a0 - a1 cos(t) + a2 cos(2t) - a3 cos(3t), t running from 0 to 2 pi over the window.
void fillCosineSum(double* w, int count, double a0, double a1, double a2, double a3) {
  for (int i = 0; i < count; ++i) {
    const double t = 2.0 * std::numbers::pi * i / (count - 1);
    w[i] = a0 - a1 * std::cos(t) + a2 * std::cos(2.0 * t) - a3 * std::cos(3.0 * t);
  }
}

// The turn comes one step before the middle, and the coefficient there may exceed 1; kept so.
void fillBartlett(double* w, int count) {
  const double span = count - 1;
  for (int i = 0; i < count; ++i) {
    const double rise = 2.0 * i / span;
    w[i] = i < count / 2 - 1 ? rise : 2.0 - rise;
  }
}

// The distance from the centre runs h - 1 ... 1, then -1, 0, 1 ...: the centre stands at h = count / 2, and
// its neighbour on the left comes twice as close as it should; kept so.
void fillGaussian(double* w, int count, double width) {
  const double scale = -0.5 * width * width / (static_cast<double>(count) * count);
  const int half = count / 2;
  for (int i = 0; i < count; ++i) {
    const double x = i < half - 1 ? half - 1 - i : i - half;
    w[i] = std::exp(scale * x * x);
  }
}

}  // namespace

const char* windowName(int kind) {
  return kind >= 0 && kind < kWindowKinds ? kNames[static_cast<size_t>(kind)] : "Unknown";
}

void makeWindow(double* coefficients, int count, int kind) {
  if (coefficients == nullptr || count < 1) return;
  if (count == 1 && kind >= 0 && kind < kWindowKinds) {
    coefficients[0] = 1.0;  // no formula has a value here: its span is empty
    return;
  }
  switch (static_cast<WindowKind>(kind)) {
    case WindowKind::rectangular:
      for (int i = 0; i < count; ++i) coefficients[i] = 1.0;
      return;
    case WindowKind::bartlett:
      return fillBartlett(coefficients, count);
    case WindowKind::hamming:
      return fillCosineSum(coefficients, count, 0.54, 0.46, 0.0, 0.0);
    case WindowKind::blackman:
      return fillCosineSum(coefficients, count, 0.42323, 0.49755, 0.07922, 0.0);
    case WindowKind::hanning:
      return fillCosineSum(coefficients, count, 0.5, 0.5, 0.0, 0.0);
    case WindowKind::blackmanHarris:
      return fillCosineSum(coefficients, count, 0.35875, 0.48829, 0.14128, 0.01168);
    case WindowKind::gaussian25:
      return fillGaussian(coefficients, count, 2.5);
    case WindowKind::gaussian5:
      return fillGaussian(coefficients, count, 5.0);
    case WindowKind::gaussian10:
      return fillGaussian(coefficients, count, 10.0);
    case WindowKind::papoulis:
      for (int i = 0; i < count; ++i) coefficients[i] = std::sin(std::numbers::pi * i / (count - 1));
      return;
  }
  std::memset(coefficients, 0, static_cast<size_t>(count));
}

}  // namespace plumetta
