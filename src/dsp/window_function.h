// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// Window functions, by the index that settings and filters use.
enum class WindowKind {
  rectangular = 0,
  bartlett = 1,
  hamming = 2,
  blackman = 3,
  hanning = 4,
  blackmanHarris = 5,
  gaussian25 = 6,
  gaussian5 = 7,
  gaussian10 = 8,
  papoulis = 9,
};
inline constexpr int kWindowKinds = 10;

// The name that lists and settings show; "Unknown" for any other index.
const char* windowName(int kind);

// Fills `count` coefficients. Nothing happens without a buffer or with a count below 1. An unknown kind sets
// the first `count` bytes of the buffer to zero, and touches nothing else.
void makeWindow(double* coefficients, int count, int kind);
inline void makeWindow(double* coefficients, int count, WindowKind kind) {
  makeWindow(coefficients, count, static_cast<int>(kind));
}

}  // namespace plumetta
