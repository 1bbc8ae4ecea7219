// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

namespace plumetta {

// The discrete Fourier transform of eight signals side by side, X[k] = sum of x[n] exp(-2 pi i n k / size):
// element n of lane v stands at n × kLanes + v, real and imaginary parts in arrays of their own. Every
// operation is then one on vectors, whatever the stage. Unscaled, in place, in radix 4 with decimation in
// frequency forward and in time backward, so that spectra stand in the order that `placeOf` tells
// (C. Van Loan, Computational Frameworks for the Fast Fourier Transform, 1992, sections 1.9 and 2.3).
// Constant after construction; threads may share one.
class LaneTransform {
 public:
  static constexpr size_t kLanes = 8;

  // `size` is a power of two, at least 2.
  explicit LaneTransform(size_t size);

  size_t size() const { return size_; }
  // Signal in natural order to spectrum in its own order.
  void forward(double* re, double* im) const;
  // And back; the result is `size` times the signal.
  void backward(double* re, double* im) const;
  // Where the spectrum's element of frequency k stands.
  size_t placeOf(size_t k) const;

 private:
  size_t size_;
  // Of the levels of length size, size / 4 ... one after the other: w, w^2 and w^3 of each p below a quarter
  // of the length, real and imaginary.
  std::vector<double> factors_;
};

}  // namespace plumetta
