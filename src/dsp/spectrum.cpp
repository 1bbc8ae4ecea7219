// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/spectrum.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

#include "core/cpu_variants.h"

namespace plumetta {
namespace {

// A part is summed by itself, so that sums don't depend on how many threads share the parts.
constexpr int64_t kFramesPerPart = int64_t{1} << 18;
constexpr size_t kPartsPerRound = 8;

// Two real lanes went through one complex transform, the second as its imaginary part: their spectra are its
// even and its odd half. Adds the power of both, four times too large.
PLUMETTA_WIDE_VECTORS
void addPowers(const double* __restrict re, const double* __restrict im, size_t size,
               double* __restrict first, double* __restrict second) {
  for (size_t k = 1; k < size / 2; ++k) {
    const double sumRe = re[k] + re[size - k], differenceRe = re[k] - re[size - k];
    const double sumIm = im[k] + im[size - k], differenceIm = im[k] - im[size - k];
    first[k] += sumRe * sumRe + differenceIm * differenceIm;
    second[k] += sumIm * sumIm + differenceRe * differenceRe;
  }
}

// The lines of 0 Hz and of half the rate are their own mirror images: real, and not halved by a negative twin.
void addEndPowers(const double* re, const double* im, size_t size, double* first, double* second) {
  for (const size_t k : {size_t{0}, size / 2}) {
    first[k] += re[k] * re[k];
    second[k] += im[k] * im[k];
  }
}

float soundOf(float sample) { return std::fabs(sample) <= std::numeric_limits<float>::max() ? sample : 0.0f; }

PLUMETTA_WIDE_VECTORS
void weigh(const float* __restrict samples, ptrdiff_t stride, const double* __restrict window, ptrdiff_t count,
           double* __restrict lane) {
  for (ptrdiff_t i = 0; i < count; ++i) lane[i] = window[i] * soundOf(samples[i * stride]);
}

}  // namespace

bool isSpectrumSize(int64_t frames) {
  return frames >= kSmallestSpectrum && frames <= kLargestSpectrum &&
         std::has_single_bit(static_cast<uint64_t>(frames));
}

SpectrumAverage::SpectrumAverage(const CWave& wave, FrameRange range, SpectrumSettings settings)
    : settings_(settings),
      first_(range.first),
      frames_(wave.frames() > 0 ? range.length() : 0),
      channels_(wave.channels()),
      sampleRate_(wave.sampleRate()),
      blocks_(std::max<int64_t>((frames_ + settings.size - 1) / settings.size, 1)),
      // Even, so that blocks pair up within a part whatever the channels.
      blocksPerPart_(std::max<int64_t>(kFramesPerPart / (settings.size * channels_), 1) * 2),
      window_(static_cast<size_t>(settings.size)),
      transform_(static_cast<size_t>(settings.size)),
      power_(lines() * static_cast<size_t>(channels_)),
      parts_(kPartsPerRound, power_) {
  makeWindow(window_.data(), settings.size, settings.window);
  windowSum_ = std::accumulate(window_.begin(), window_.end(), 0.0);
  benches_.resize(static_cast<size_t>(crew_.size()), Bench(transform_.size()));
}

bool SpectrumAverage::advance(const CWave& wave) {
  const int64_t partsLeft = (blocks_ - nextBlock_ + blocksPerPart_ - 1) / blocksPerPart_;
  const auto parts = static_cast<int>(std::min<int64_t>(partsLeft, kPartsPerRound));
  crew_.run(parts, [&](int part, int worker) {
    std::vector<double>& power = parts_[static_cast<size_t>(part)];
    std::fill(power.begin(), power.end(), 0.0);
    sumPart(wave, nextBlock_ + part * blocksPerPart_, benches_[static_cast<size_t>(worker)], power);
  });
  for (int part = 0; part < parts; ++part) {
    const std::vector<double>& power = parts_[static_cast<size_t>(part)];
    for (size_t i = 0; i < power.size(); ++i) power_[i] += power[i];
  }
  nextBlock_ = std::min(nextBlock_ + parts * blocksPerPart_, blocks_);
  return nextBlock_ < blocks_;
}

// Lane after lane, two at a time: the channels of the first block, then those of the next.
void SpectrumAverage::sumPart(const CWave& wave, int64_t firstBlock, Bench& bench,
                              std::vector<double>& power) const {
  const int64_t lanes = std::min(blocksPerPart_, blocks_ - firstBlock) * channels_;
  std::vector<double> nowhere(lines());
  const auto powerOf = [&](int64_t lane) {
    return lane < lanes ? power.data() + static_cast<size_t>(lane % channels_) * lines() : nowhere.data();
  };
  std::vector<double> apart(lines());  // two blocks of a mono buffer go to one sum
  for (int64_t lane = 0; lane < lanes; lane += 2) {
    for (const int64_t side : {lane, lane + 1}) {
      double* target = side == lane ? bench.real.data() : bench.imaginary.data();
      if (side < lanes) {
        readLane(wave, firstBlock + side / channels_, static_cast<int>(side % channels_), target);
      } else {
        std::fill_n(target, transform_.size(), 0.0);
      }
    }
    transform_.forward(bench.real.data(), bench.imaginary.data(), bench.scratch);
    double* const second = channels_ == 1 ? apart.data() : powerOf(lane + 1);
    addPowers(bench.real.data(), bench.imaginary.data(), transform_.size(), powerOf(lane), second);
    addEndPowers(bench.real.data(), bench.imaginary.data(), transform_.size(), powerOf(lane), second);
  }
  if (channels_ != 1) return;
  for (size_t k = 0; k < lines(); ++k) power[k] += apart[k];
}

void SpectrumAverage::readLane(const CWave& wave, int64_t block, int channel, double* lane) const {
  const int64_t start = block * settings_.size;
  const int64_t count = std::clamp<int64_t>(frames_ - start, 0, settings_.size);
  weigh(wave.samples() + (first_ + start) * channels_ + channel, channels_, window_.data(), count, lane);
  std::fill(lane + count, lane + settings_.size, 0.0);
}

double SpectrumAverage::fractionDone() const {
  return static_cast<double>(nextBlock_) / static_cast<double>(blocks_);
}

SpectrumRecord SpectrumAverage::record() const {
  SpectrumRecord record;
  record.channels = channels_;
  record.lines = static_cast<int32_t>(lines());
  record.stopHz = sampleRate_ / 2;
  record.sampleRate = sampleRate_;
  record.values.reserve(power_.size());
  const auto blocks = static_cast<double>(std::max<int64_t>(nextBlock_, 1));
  for (size_t line = 0; line < lines(); ++line) {
    // The powers are four times too large, which makes up for the half of a sine that its negative twin has.
    for (size_t channel = 0; channel < static_cast<size_t>(channels_); ++channel) {
      record.values.push_back(std::sqrt(power_[channel * lines() + line] / blocks) / windowSum_);
    }
  }
  return record;
}

std::optional<SpectrumRecord> averagedSpectrum(const CWave& wave, FrameRange range, SpectrumSettings settings,
                                               const WaveProgress& progress) {
  SpectrumAverage average(wave, range, settings);
  while (average.advance(wave)) {
    if (!progress.report(static_cast<float>(average.fractionDone()))) return std::nullopt;
  }
  return average.record();
}

double spectrumDb(double amplitude) {
  constexpr double kSilence = 1e-20;
  return 20.0 * std::log10(std::max(amplitude, kSilence));
}

}  // namespace plumetta
