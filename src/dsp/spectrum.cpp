// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/spectrum.h"

#include <algorithm>
#include <cmath>

namespace plumetta {
namespace {

// A part is summed by itself, so that sums don't depend on how many threads share the parts.
constexpr int64_t kSamplesPerPart = int64_t{1} << 18;
constexpr size_t kPartsPerRound = 8;

}  // namespace

SpectrumAverage::SpectrumAverage(const CWave& wave, FrameRange range, SpectrumSettings settings)
    : size_(settings.size),
      range_(range),
      channels_(wave.channels()),
      sampleRate_(wave.sampleRate()),
      blocks_(wave.frames() > 0 ? (int64_t{range.length()} + size_ - 1) / size_ : 1),
      blocksPerGroup_(StripSpectra::kStrips / channels_),
      blocksPerPart_(std::max<int64_t>(kSamplesPerPart / size_ / StripSpectra::kStrips, 1) * blocksPerGroup_),
      spectra_(settings),
      power_(spectra_.lines() * static_cast<size_t>(channels_)),
      parts_(kPartsPerRound, power_),
      benches_(static_cast<size_t>(crew_.size()), spectra_.makeBench()) {}

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

void SpectrumAverage::sumPart(const CWave& wave, int64_t firstBlock, StripSpectra::Bench& bench,
                              std::vector<double>& power) const {
  std::fill(bench.power.begin(), bench.power.end(), 0.0);
  const int64_t endBlock = std::min(firstBlock + blocksPerPart_, blocks_);
  StripSpectra::Strip strips[StripSpectra::kStrips];
  for (int64_t block = firstBlock; block < endBlock; block += blocksPerGroup_) {
    const int count = listStrips(block, std::min(block + blocksPerGroup_, endBlock), strips);
    spectra_.addPowers(wave, range_, {strips, static_cast<size_t>(count)}, bench);
  }
  const auto channels = static_cast<size_t>(channels_);
  for (size_t line = 0; line < spectra_.lines(); ++line) {
    double* const sums = power.data() + line * channels;
    std::fill_n(sums, channels, 0.0);
    for (int strip = 0; strip < StripSpectra::kStrips; ++strip) {
      sums[strip % channels_] += bench.power[StripSpectra::powerAt(line, strip)];
    }
  }
}

int SpectrumAverage::listStrips(int64_t firstBlock, int64_t endBlock, StripSpectra::Strip* strips) const {
  int count = 0;
  for (int64_t block = firstBlock; block < endBlock; ++block) {
    for (int c = 0; c < channels_; ++c) strips[count++] = {range_.first + block * size_, c};
  }
  return count;
}

double SpectrumAverage::fractionDone() const {
  return static_cast<double>(nextBlock_) / static_cast<double>(blocks_);
}

SpectrumRecord SpectrumAverage::record() const {
  SpectrumRecord record;
  record.channels = channels_;
  record.lines = static_cast<int32_t>(spectra_.lines());
  record.stopHz = sampleRate_ / 2;
  record.sampleRate = sampleRate_;
  record.values = power_;
  const auto blocks = static_cast<double>(std::max<int64_t>(nextBlock_, 1));
  for (double& value : record.values) value = std::sqrt(value / blocks) / spectra_.windowSum();
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
