// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/spectrum.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>

#include "core/cpu_variants.h"

namespace plumetta {
namespace {

// A part is summed by itself, so that sums don't depend on how many threads share the parts.
constexpr int64_t kSamplesPerPart = int64_t{1} << 18;
constexpr size_t kPartsPerRound = 8;

constexpr size_t kLanes = LaneTransform::kLanes;

// The lines of 0 Hz and of half the rate are their own twins: real, and not halved.
inline void addEndRow(const double* re, const double* im, double* power) {
  for (size_t v = 0; v < kLanes; ++v) {
    power[v] += re[v] * re[v];
    power[kLanes + v] += im[v] * im[v];
  }
}

// Two real strips went through one complex transform, the second as its imaginary part: their spectra are its
// even and its odd half. Adds the power of both, four times too large, from the rows of each frequency and of
// its negative twin. `rows` tells where the transform has left the row of a frequency.
PLUMETTA_WIDE_VECTORS
void addPowers(const double* re, const double* im, const size_t* rows, size_t size,
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

SpectrumAverage::SpectrumAverage(const CWave& wave, FrameRange range, SpectrumSettings settings)
    : settings_(settings),
      first_(range.first),
      frames_(wave.frames() > 0 ? range.length() : 0),
      channels_(wave.channels()),
      sampleRate_(wave.sampleRate()),
      blocks_(std::max<int64_t>((frames_ + settings.size - 1) / settings.size, 1)),
      blocksPerGroup_(kStrips / channels_),
      blocksPerPart_(std::max<int64_t>(kSamplesPerPart / settings.size / kStrips, 1) * blocksPerGroup_),
      window_(static_cast<size_t>(settings.size)),
      transform_(static_cast<size_t>(settings.size)),
      power_(lines() * static_cast<size_t>(channels_)),
      parts_(kPartsPerRound, power_) {
  makeWindow(window_.data(), settings.size, settings.window);
  windowSum_ = std::accumulate(window_.begin(), window_.end(), 0.0);
  for (size_t k = 0; k < transform_.size(); ++k) rows_.push_back(transform_.placeOf(k) * kLanes);
  benches_.resize(static_cast<size_t>(crew_.size()), Bench(transform_.size()));
}

bool SpectrumAverage::advance(const CWave& wave) {
  const int64_t partsLeft = (blocks_ - nextBlock_ + blocksPerPart_ - 1) / blocksPerPart_;
  const auto parts = static_cast<int>(std::min<int64_t>(partsLeft, kPartsPerRound));
  crew_.run(parts, [&](int part, int worker) {
    sumPart(wave, nextBlock_ + part * blocksPerPart_, benches_[static_cast<size_t>(worker)],
            parts_[static_cast<size_t>(part)]);
  });
  for (int part = 0; part < parts; ++part) {
    const std::vector<double>& power = parts_[static_cast<size_t>(part)];
    for (size_t i = 0; i < power.size(); ++i) power_[i] += power[i];
  }
  nextBlock_ = std::min(nextBlock_ + parts * blocksPerPart_, blocks_);
  return nextBlock_ < blocks_;
}

void SpectrumAverage::sumPart(const CWave& wave, int64_t firstBlock, Bench& bench,
                              std::vector<double>& power) const {
  std::fill(bench.power.begin(), bench.power.end(), 0.0);
  const int64_t endBlock = std::min(firstBlock + blocksPerPart_, blocks_);
  for (int64_t block = firstBlock; block < endBlock; block += blocksPerGroup_) {
    transformGroup(wave, block, std::min(block + blocksPerGroup_, endBlock), bench);
    addPowers(bench.re.data(), bench.im.data(), rows_.data(), transform_.size(), bench.power.data());
  }
  const auto channels = static_cast<size_t>(channels_);
  for (size_t line = 0; line < lines(); ++line) {
    const double* row = bench.power.data() + line * kStrips;
    double* const sums = power.data() + line * channels;
    std::fill_n(sums, channels, 0.0);
    for (size_t strip = 0, channel = 0; strip < kStrips; ++strip) {
      sums[channel] += row[strip % 2 * kLanes + strip / 2];
      if (++channel == channels) channel = 0;
    }
  }
}

// A sample that is no number spoils its strip down to the line of 0 Hz; then the strips are read once more
// with silence in its place.
void SpectrumAverage::transformGroup(const CWave& wave, int64_t firstBlock, int64_t endBlock,
                                     Bench& bench) const {
  if (readWholeStrips(wave, firstBlock, endBlock, bench)) {
    transform_.forward(bench.re.data(), bench.im.data());
    if (allFinite(bench.re.data() + rows_[0]) && allFinite(bench.im.data() + rows_[0])) return;
  }
  readStrips(wave, firstBlock, endBlock, bench);
  transform_.forward(bench.re.data(), bench.im.data());
}

// False where a strip is not all inside the range.
bool SpectrumAverage::readWholeStrips(const CWave& wave, int64_t firstBlock, int64_t endBlock,
                                      Bench& bench) const {
  if (kStrips % channels_ != 0 || endBlock - firstBlock < blocksPerGroup_) return false;
  if (endBlock * settings_.size > frames_) return false;
  const float* sources[kStrips];
  for (int strip = 0; strip < kStrips; ++strip) {
    const int64_t start = first_ + (firstBlock + strip / channels_) * settings_.size;
    sources[strip] = wave.samples() + start * channels_ + strip % channels_;
  }
  weigh(sources, channels_, window_.data(), window_.size(), bench.re.data(), bench.im.data());
  return true;
}

void SpectrumAverage::readStrips(const CWave& wave, int64_t firstBlock, int64_t endBlock,
                                 Bench& bench) const {
  std::fill(bench.re.begin(), bench.re.end(), 0.0);
  std::fill(bench.im.begin(), bench.im.end(), 0.0);
  for (int strip = 0; strip < kStrips; ++strip) {
    const int64_t block = firstBlock + strip / channels_;
    const int64_t start = block * settings_.size;
    const int64_t count = block < endBlock ? std::min<int64_t>(frames_ - start, settings_.size) : 0;
    double* target = (strip % 2 == 0 ? bench.re : bench.im).data() + strip / 2;
    for (int64_t i = 0; i < count; ++i, target += kLanes) {
      const float sample = wave.samples()[(first_ + start + i) * channels_ + strip % channels_];
      if (std::isfinite(sample)) *target = window_[static_cast<size_t>(i)] * sample;
    }
  }
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
  record.values = power_;
  const auto blocks = static_cast<double>(std::max<int64_t>(nextBlock_, 1));
  // The powers are four times too large, which makes up for the half of a sine that its negative twin has.
  for (double& value : record.values) value = std::sqrt(value / blocks) / windowSum_;
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
