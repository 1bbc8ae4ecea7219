// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/strip_spectra.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>

#include "core/cpu_variants.h"

namespace plumetta {
namespace {

constexpr size_t kLanes = LaneTransform::kLanes;

// The lines of 0 Hz and of half the rate are their own twins: real, and not halved.
inline void addEndRow(const double* re, const double* im, double* power) {
  for (size_t v = 0; v < kLanes; ++v) {
    power[v] += re[v] * re[v];
    power[kLanes + v] += im[v] * im[v];
  }
}

// Two real strips went through one complex transform, the second as its imaginary part: their spectra are its
// even and its odd half. Adds the power of both, four times too large, which makes up for the half of a sine
// that its negative twin has. `rows` tells where the transform has left the row of a frequency.
PLUMETTA_WIDE_VECTORS
void addPowerRows(const double* re, const double* im, const size_t* rows, size_t size,
                  double* __restrict power) {
  addEndRow(re + rows[0], im + rows[0], power);
  for (size_t k = 1; k < size / 2; ++k) {
    power += 2 * kLanes;
    const double *hereRe = re + rows[k], *hereIm = im + rows[k];
    const double *twinRe = re + rows[size - k], *twinIm = im + rows[size - k];
    for (size_t v = 0; v < kLanes; ++v) {
      const double sumRe = hereRe[v] + twinRe[v], differenceRe = hereRe[v] - twinRe[v];
      const double sumIm = hereIm[v] + twinIm[v], differenceIm = hereIm[v] - twinIm[v];
      power[v] += sumRe * sumRe + differenceIm * differenceIm;
      power[kLanes + v] += sumIm * sumIm + differenceRe * differenceRe;
    }
  }
  addEndRow(re + rows[size / 2], im + rows[size / 2], power + 2 * kLanes);
}

PLUMETTA_WIDE_VECTORS
void weigh(const float* const* sources, int64_t stride, const double* window, size_t size,
           double* __restrict re, double* __restrict im) {
  for (size_t i = 0; i < size; ++i, re += kLanes, im += kLanes) {
    for (size_t v = 0; v < kLanes; ++v) {
      re[v] = window[i] * sources[2 * v][static_cast<int64_t>(i) * stride];
      im[v] = window[i] * sources[2 * v + 1][static_cast<int64_t>(i) * stride];
    }
  }
}

bool allFinite(const double* row) {
  return std::all_of(row, row + kLanes, [](double value) { return std::isfinite(value); });
}

}  // namespace

bool isSpectrumSize(int64_t frames) {
  return frames >= kSmallestSpectrum && frames <= kLargestSpectrum &&
         std::has_single_bit(static_cast<uint64_t>(frames));
}

StripSpectra::StripSpectra(SpectrumSettings settings)
    : window_(static_cast<size_t>(settings.size)), transform_(static_cast<size_t>(settings.size)) {
  makeWindow(window_.data(), settings.size, settings.window);
  windowSum_ = std::accumulate(window_.begin(), window_.end(), 0.0);
  for (size_t k = 0; k < transform_.size(); ++k) rows_.push_back(transform_.placeOf(k) * kLanes);
}

StripSpectra::Bench StripSpectra::makeBench() const {
  const size_t rows = transform_.size() * kLanes;
  return {std::vector<double>(rows), std::vector<double>(rows), std::vector<double>(lines() * kStrips)};
}

// A sample that is no number spoils its strip down to the line of 0 Hz; then the strips are read once more
// with silence in its place.
void StripSpectra::addPowers(const CWave& wave, FrameRange inside, std::span<const Strip> strips,
                             Bench& bench) const {
  bool sound = readWholeStrips(wave, inside, strips, bench);
  if (sound) {
    transform_.forward(bench.re.data(), bench.im.data());
    sound = allFinite(bench.re.data() + rows_[0]) && allFinite(bench.im.data() + rows_[0]);
  }
  if (!sound) {
    readStrips(wave, inside, strips, bench);
    transform_.forward(bench.re.data(), bench.im.data());
  }
  addPowerRows(bench.re.data(), bench.im.data(), rows_.data(), transform_.size(), bench.power.data());
}

// False where a strip is missing or not all inside the range.
bool StripSpectra::readWholeStrips(const CWave& wave, FrameRange inside, std::span<const Strip> strips,
                                   Bench& bench) const {
  if (strips.size() != kStrips || wave.frames() == 0) return false;
  const auto size = static_cast<int64_t>(window_.size());
  const float* sources[kStrips];
  for (size_t i = 0; i < kStrips; ++i) {
    if (strips[i].start < inside.first || strips[i].start + size - 1 > inside.last) return false;
    sources[i] = wave.samples() + strips[i].start * wave.channels() + strips[i].channel;
  }
  weigh(sources, wave.channels(), window_.data(), window_.size(), bench.re.data(), bench.im.data());
  return true;
}

void StripSpectra::readStrips(const CWave& wave, FrameRange inside, std::span<const Strip> strips,
                              Bench& bench) const {
  std::fill(bench.re.begin(), bench.re.end(), 0.0);
  std::fill(bench.im.begin(), bench.im.end(), 0.0);
  if (wave.frames() == 0) return;
  const auto size = static_cast<int64_t>(window_.size());
  for (size_t strip = 0; strip < strips.size(); ++strip) {
    const auto [start, channel] = strips[strip];
    double* const target = (strip % 2 == 0 ? bench.re : bench.im).data() + strip / 2;
    const int64_t end = std::min<int64_t>(inside.last + int64_t{1}, start + size);
    for (int64_t frame = std::max<int64_t>(inside.first, start); frame < end; ++frame) {
      const auto i = static_cast<size_t>(frame - start);
      const float sample = wave.samples()[frame * wave.channels() + channel];
      if (std::isfinite(sample)) target[i * kLanes] = window_[i] * sample;
    }
  }
}

}  // namespace plumetta
