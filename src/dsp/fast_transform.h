// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

namespace plumetta {

// The discrete Fourier transform of a power of two of complex doubles, real and imaginary parts in arrays of
// their own, X[k] = sum of x[n] exp(-2 pi i n k / size). Unscaled. The backward transform is the forward one
// with the two arrays exchanged, on the way in and on the way out.
//
// Stockham's autosort form in radix 4, so that every inner loop runs over neighbours (C. Van Loan,
// Computational Frameworks for the Fast Fourier Transform, 1992, section 1.7). Constant after construction:
// threads may share one, each with a scratch of its own.
class FastTransform {
 public:
  // `size` is a power of two, at least 4.
  explicit FastTransform(size_t size);

  size_t size() const { return size_; }

  // What a transform needs beside its data; made once by each thread.
  struct Scratch {
    explicit Scratch(size_t size) : real(size), imaginary(size) {}
    std::vector<double> real, imaginary;
  };

  // In place.
  void forward(double* real, double* imaginary, Scratch& scratch) const;
  void backward(double* real, double* imaginary, Scratch& scratch) const {
    forward(imaginary, real, scratch);
  }

 private:
  struct Stage {
    size_t quarter;   // a quarter of the length that the stage splits
    size_t stride;    // how many such transforms lie side by side
    size_t twiddles;  // where its factors begin: w, w^2 and w^3, each real and imaginary, `quarter` long
  };

  size_t size_;
  bool halves_;  // the size is no power of four: a last stage in radix 2 remains
  std::vector<Stage> stages_;
  std::vector<double> twiddles_;
};

}  // namespace plumetta
