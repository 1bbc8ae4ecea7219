// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/fast_transform.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>

#include "core/cpu_variants.h"

namespace plumetta {
namespace {

// The first stage: transforms lie apart, so the loop runs over the butterflies, which write four neighbours.
PLUMETTA_WIDE_VECTORS
void firstStage(const double* __restrict re, const double* __restrict im, double* __restrict outRe,
                double* __restrict outIm, size_t quarter, const double* __restrict w) {
  const double* const w1r = w;
  const double* const w1i = w + quarter;
  const double* const w2r = w + 2 * quarter;
  const double* const w2i = w + 3 * quarter;
  const double* const w3r = w + 4 * quarter;
  const double* const w3i = w + 5 * quarter;
  for (size_t p = 0; p < quarter; ++p) {
    const double acr = re[p] + re[p + 2 * quarter], aci = im[p] + im[p + 2 * quarter];
    const double amr = re[p] - re[p + 2 * quarter], ami = im[p] - im[p + 2 * quarter];
    const double bdr = re[p + quarter] + re[p + 3 * quarter], bdi = im[p + quarter] + im[p + 3 * quarter];
    const double bmr = re[p + quarter] - re[p + 3 * quarter], bmi = im[p + quarter] - im[p + 3 * quarter];
    const double s1r = amr + bmi, s1i = ami - bmr;
    const double s2r = acr - bdr, s2i = aci - bdi;
    const double s3r = amr - bmi, s3i = ami + bmr;
    outRe[4 * p] = acr + bdr;
    outIm[4 * p] = aci + bdi;
    outRe[4 * p + 1] = s1r * w1r[p] - s1i * w1i[p];
    outIm[4 * p + 1] = s1r * w1i[p] + s1i * w1r[p];
    outRe[4 * p + 2] = s2r * w2r[p] - s2i * w2i[p];
    outIm[4 * p + 2] = s2r * w2i[p] + s2i * w2r[p];
    outRe[4 * p + 3] = s3r * w3r[p] - s3i * w3i[p];
    outIm[4 * p + 3] = s3r * w3i[p] + s3i * w3r[p];
  }
}

// A later stage: `stride` transforms lie side by side and share their factors.
PLUMETTA_WIDE_VECTORS
void laterStage(const double* __restrict re, const double* __restrict im, double* __restrict outRe,
                double* __restrict outIm, size_t quarter, size_t stride, const double* __restrict w) {
  const size_t step = quarter * stride;
  for (size_t p = 0; p < quarter; ++p) {
    const double w1r = w[p], w1i = w[quarter + p];
    const double w2r = w[2 * quarter + p], w2i = w[3 * quarter + p];
    const double w3r = w[4 * quarter + p], w3i = w[5 * quarter + p];
    const double* const xr = re + p * stride;
    const double* const xi = im + p * stride;
    double* const yr = outRe + 4 * p * stride;
    double* const yi = outIm + 4 * p * stride;
    for (size_t q = 0; q < stride; ++q) {
      const double acr = xr[q] + xr[q + 2 * step], aci = xi[q] + xi[q + 2 * step];
      const double amr = xr[q] - xr[q + 2 * step], ami = xi[q] - xi[q + 2 * step];
      const double bdr = xr[q + step] + xr[q + 3 * step], bdi = xi[q + step] + xi[q + 3 * step];
      const double bmr = xr[q + step] - xr[q + 3 * step], bmi = xi[q + step] - xi[q + 3 * step];
      const double s1r = amr + bmi, s1i = ami - bmr;
      const double s2r = acr - bdr, s2i = aci - bdi;
      const double s3r = amr - bmi, s3i = ami + bmr;
      yr[q] = acr + bdr;
      yi[q] = aci + bdi;
      yr[q + stride] = s1r * w1r - s1i * w1i;
      yi[q + stride] = s1r * w1i + s1i * w1r;
      yr[q + 2 * stride] = s2r * w2r - s2i * w2i;
      yi[q + 2 * stride] = s2r * w2i + s2i * w2r;
      yr[q + 3 * stride] = s3r * w3r - s3i * w3i;
      yi[q + 3 * stride] = s3r * w3i + s3i * w3r;
    }
  }
}

PLUMETTA_WIDE_VECTORS
void lastHalves(const double* __restrict re, const double* __restrict im, double* __restrict outRe,
                double* __restrict outIm, size_t half) {
  for (size_t q = 0; q < half; ++q) {
    outRe[q] = re[q] + re[q + half];
    outIm[q] = im[q] + im[q + half];
    outRe[q + half] = re[q] - re[q + half];
    outIm[q + half] = im[q] - im[q + half];
  }
}

}  // namespace

FastTransform::FastTransform(size_t size) : size_(size), halves_(std::countr_zero(size) % 2 == 1) {
  for (size_t length = size, stride = 1; length >= 4; length /= 4, stride *= 4) {
    const size_t quarter = length / 4;
    stages_.push_back({quarter, stride, twiddles_.size()});
    for (const int power : {1, 2, 3}) {
      const double angle = -2.0 * std::numbers::pi * power / static_cast<double>(length);
      for (size_t p = 0; p < quarter; ++p) twiddles_.push_back(std::cos(angle * static_cast<double>(p)));
      for (size_t p = 0; p < quarter; ++p) twiddles_.push_back(std::sin(angle * static_cast<double>(p)));
    }
  }
}

void FastTransform::forward(double* real, double* imaginary, Scratch& scratch) const {
  double* from[2] = {real, imaginary};
  double* to[2] = {scratch.real.data(), scratch.imaginary.data()};
  for (const Stage& stage : stages_) {
    const double* w = twiddles_.data() + stage.twiddles;
    if (stage.stride == 1) {
      firstStage(from[0], from[1], to[0], to[1], stage.quarter, w);
    } else {
      laterStage(from[0], from[1], to[0], to[1], stage.quarter, stage.stride, w);
    }
    std::swap(from, to);
  }
  if (halves_) {
    lastHalves(from[0], from[1], to[0], to[1], size_ / 2);
    std::swap(from, to);
  }
  if (from[0] == real) return;
  std::copy_n(from[0], size_, real);
  std::copy_n(from[1], size_, imaginary);
}

}  // namespace plumetta
