// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/lane_transform.h"

#include <cmath>
#include <numbers>

#include "core/cpu_variants.h"

namespace plumetta {
namespace {

constexpr size_t kLanes = LaneTransform::kLanes;
// The lanes of one element as the compilers' vector extension has them: as many machine vectors as it takes.
using Lanes [[gnu::vector_size(kLanes * sizeof(double)), gnu::aligned(alignof(double)), gnu::may_alias]] =
    double;
inline Lanes& at(double* lanes) { return *reinterpret_cast<Lanes*>(lanes); }

// Levels of at most this length are worked off one after the other: their data fit into the fastest cache.
constexpr size_t kCachedLength = 256;

// How many numbers a level of this length has.
constexpr size_t factorsOf(size_t length) { return 6 * (length / 4); }

// Splits `total` elements of length `length` each, then their quarters, through `passes` levels.
PLUMETTA_WIDE_VECTORS
void splitLevels(double* __restrict re, double* __restrict im, size_t total, size_t length,
                 const double* factors, int passes) {
  for (; passes > 0; --passes, factors += factorsOf(length), length /= 4) {
    const size_t step = length / 4 * kLanes;
    for (size_t base = 0; base < total; base += length) {
      const double* w = factors;
      double* r = re + base * kLanes;
      double* i = im + base * kLanes;
      for (size_t p = 0; p < length / 4; ++p, w += 6, r += kLanes, i += kLanes) {
        const Lanes ar = at(r), ai = at(i), br = at(r + step), bi = at(i + step);
        const Lanes cr = at(r + 2 * step), ci = at(i + 2 * step), dr = at(r + 3 * step),
                    di = at(i + 3 * step);
        const Lanes acr = ar + cr, aci = ai + ci, amr = ar - cr, ami = ai - ci;
        const Lanes bdr = br + dr, bdi = bi + di, bmr = br - dr, bmi = bi - di;
        const Lanes s1r = amr + bmi, s1i = ami - bmr;
        const Lanes s2r = acr - bdr, s2i = aci - bdi;
        const Lanes s3r = amr - bmi, s3i = ami + bmr;
        at(r) = acr + bdr;
        at(i) = aci + bdi;
        at(r + step) = s1r * w[0] - s1i * w[1];
        at(i + step) = s1r * w[1] + s1i * w[0];
        at(r + 2 * step) = s2r * w[2] - s2i * w[3];
        at(i + 2 * step) = s2r * w[3] + s2i * w[2];
        at(r + 3 * step) = s3r * w[4] - s3i * w[5];
        at(i + 3 * step) = s3r * w[5] + s3i * w[4];
      }
    }
  }
}

// The way back: joins quarters of `length` / 4 each, then what came of them, through `passes` levels.
PLUMETTA_WIDE_VECTORS
void joinLevels(double* __restrict re, double* __restrict im, size_t total, size_t length,
                const double* factors, int passes) {
  for (; passes > 0; --passes, length *= 4, factors -= factorsOf(length)) {
    const size_t step = length / 4 * kLanes;
    for (size_t base = 0; base < total; base += length) {
      const double* w = factors;
      double* r = re + base * kLanes;
      double* i = im + base * kLanes;
      for (size_t p = 0; p < length / 4; ++p, w += 6, r += kLanes, i += kLanes) {
        const Lanes br = at(r + step), bi = at(i + step), cr = at(r + 2 * step), ci = at(i + 2 * step);
        const Lanes dr = at(r + 3 * step), di = at(i + 3 * step);
        const Lanes s1r = br * w[0] + bi * w[1], s1i = bi * w[0] - br * w[1];
        const Lanes s2r = cr * w[2] + ci * w[3], s2i = ci * w[2] - cr * w[3];
        const Lanes s3r = dr * w[4] + di * w[5], s3i = di * w[4] - dr * w[5];
        const Lanes acr = at(r) + s2r, aci = at(i) + s2i, amr = at(r) - s2r, ami = at(i) - s2i;
        const Lanes bdr = s1r + s3r, bdi = s1i + s3i, bmr = s1r - s3r, bmi = s1i - s3i;
        at(r) = acr + bdr;
        at(i) = aci + bdi;
        at(r + step) = amr - bmi;
        at(i + step) = ami + bmr;
        at(r + 2 * step) = acr - bdr;
        at(i + 2 * step) = aci - bdi;
        at(r + 3 * step) = amr + bmi;
        at(i + 3 * step) = ami - bmr;
      }
    }
  }
}

// What remains of a size that is no power of four: sums and differences of neighbours, there and back alike.
PLUMETTA_WIDE_VECTORS
void joinPairs(double* __restrict x, size_t total) {
  for (size_t base = 0; base < total; base += 2, x += 2 * kLanes) {
    const Lanes first = at(x), second = at(x + kLanes);
    at(x) = first + second;
    at(x + kLanes) = first - second;
  }
}

int levelsOf(size_t length) {
  int levels = 0;
  for (; length >= 4; length /= 4) ++levels;
  return levels;
}

bool leavesPairs(size_t length) {
  while (length >= 4) length /= 4;
  return length == 2;
}

void forwardFrom(double* re, double* im, size_t length, const double* factors) {
  if (length > kCachedLength) {
    splitLevels(re, im, length, length, factors, 1);
    for (size_t part = 0; part < 4; ++part) {
      const size_t from = part * length / 4 * kLanes;
      forwardFrom(re + from, im + from, length / 4, factors + factorsOf(length));
    }
    return;
  }
  splitLevels(re, im, length, length, factors, levelsOf(length));
  if (!leavesPairs(length)) return;
  joinPairs(re, length);
  joinPairs(im, length);
}

void backwardFrom(double* re, double* im, size_t length, const double* factors) {
  if (length > kCachedLength) {
    for (size_t part = 0; part < 4; ++part) {
      const size_t from = part * length / 4 * kLanes;
      backwardFrom(re + from, im + from, length / 4, factors + factorsOf(length));
    }
    joinLevels(re, im, length, length, factors, 1);
    return;
  }
  const bool pairs = leavesPairs(length);
  if (pairs) {
    joinPairs(re, length);
    joinPairs(im, length);
  }
  // From the shortest level, whose factors stand last.
  const size_t shortest = pairs ? 8 : 4;
  for (size_t longer = length; longer > shortest; longer /= 4) factors += factorsOf(longer);
  joinLevels(re, im, length, shortest, factors, levelsOf(length));
}

}  // namespace

LaneTransform::LaneTransform(size_t size) : size_(size) {
  for (size_t length = size; length >= 4; length /= 4) {
    for (size_t p = 0; p < length / 4; ++p) {
      for (const int power : {1, 2, 3}) {
        const double angle =
            -2.0 * std::numbers::pi * power * static_cast<double>(p) / static_cast<double>(length);
        factors_.push_back(std::cos(angle));
        factors_.push_back(std::sin(angle));
      }
    }
  }
}

void LaneTransform::forward(double* re, double* im) const { forwardFrom(re, im, size_, factors_.data()); }

void LaneTransform::backward(double* re, double* im) const { backwardFrom(re, im, size_, factors_.data()); }

size_t LaneTransform::placeOf(size_t k) const {
  size_t place = 0;
  size_t length = size_;
  for (; length >= 4; length /= 4, k /= 4) place += k % 4 * (length / 4);
  return length == 2 ? place + k % 2 : place;
}

}  // namespace plumetta
