// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/sonogram.h"

#include <algorithm>
#include <cmath>

namespace plumetta {
namespace {

constexpr int64_t kSamplesPerPart = int64_t{1} << 17;
constexpr int64_t kPartsPerRound = 8;
// Far outside of every buffer; blocks there are silence wherever they begin.
constexpr double kFar = 1e12;

}  // namespace

Sonogram::Sonogram(const CWave& wave, SonogramPlan plan)
    : plan_(std::move(plan)),
      buffer_{0, wave.frames() - 1},
      spectra_(plan_.spectrum),
      hzPerLine_(static_cast<double>(wave.sampleRate()) / plan_.spectrum.size),
      sums_(static_cast<size_t>(plan_.planes()) * static_cast<size_t>(plan_.columns) * spectra_.lines()),
      benches_(static_cast<size_t>(crew_.size()), spectra_.makeBench()) {}

size_t Sonogram::at(int plane, int column) const {
  const auto columns = static_cast<size_t>(plan_.columns);
  return (static_cast<size_t>(plane) * columns + static_cast<size_t>(column)) * lines();
}

// The blocks of a column stand in the middles of its equal parts.
StripSpectra::Strip Sonogram::stripOf(int64_t item) const {
  const auto pass = static_cast<double>(item / itemsPerPass());
  const double within = (pass + 0.5) / plan_.blocksPerColumn;
  const double middle = plan_.firstFrame + (columnOf(item) + within) * plan_.framesPerColumn;
  const double start = std::floor(std::clamp(middle, -kFar, kFar)) - plan_.spectrum.size / 2;
  const auto channel = static_cast<size_t>(item) % plan_.channels.size();
  return {static_cast<int64_t>(start), plan_.channels[channel]};
}

// A part has whole columns to itself, so that no two threads add to the same sums. A pass begins a new part.
bool Sonogram::advance(const CWave& wave) {
  const auto channels = static_cast<int64_t>(plan_.channels.size());
  const int64_t columnsPerPart = std::max<int64_t>(kSamplesPerPart / plan_.spectrum.size / channels, 1);
  const int64_t itemsPerPart = columnsPerPart * channels;
  const int64_t passEnd = (nextItem_ / itemsPerPass() + 1) * itemsPerPass();
  const int64_t end = std::min({passEnd, nextItem_ + kPartsPerRound * itemsPerPart, items()});
  const auto parts = static_cast<int>((end - nextItem_ + itemsPerPart - 1) / itemsPerPart);
  crew_.run(parts, [&](int part, int worker) {
    const int64_t first = nextItem_ + part * itemsPerPart;
    addItems(wave, first, std::min(first + itemsPerPart, end), benches_[static_cast<size_t>(worker)]);
  });
  nextItem_ = end;
  return nextItem_ < items();
}

void Sonogram::addItems(const CWave& wave, int64_t first, int64_t end, StripSpectra::Bench& bench) {
  for (int64_t group = first; group < end; group += StripSpectra::kStrips) {
    StripSpectra::Strip strips[StripSpectra::kStrips];
    const auto count = static_cast<int>(std::min<int64_t>(end - group, StripSpectra::kStrips));
    for (int i = 0; i < count; ++i) strips[i] = stripOf(group + i);
    std::fill(bench.power.begin(), bench.power.end(), 0.0);
    spectra_.addPowers(wave, buffer_, {strips, static_cast<size_t>(count)}, bench);
    for (int i = 0; i < count; ++i) {
      const auto channel = static_cast<int>((group + i) % static_cast<int64_t>(plan_.channels.size()));
      float* const sums = &sums_[at(plan_.together ? 0 : channel, columnOf(group + i))];
      for (size_t line = 0; line < lines(); ++line) {
        sums[line] += static_cast<float>(bench.power[StripSpectra::powerAt(line, i)]);
      }
    }
  }
}

double Sonogram::fractionDone() const {
  return static_cast<double>(nextItem_) / static_cast<double>(items());
}

std::span<const float> Sonogram::powers(int plane, int column) const {
  return {sums_.data() + at(plane, column), lines()};
}

double Sonogram::powerScale(int column) const {
  const auto channels = static_cast<int64_t>(plan_.channels.size());
  const int64_t passes = nextItem_ / itemsPerPass();
  const bool ahead = column * channels < nextItem_ % itemsPerPass();
  const int64_t blocks = (passes + (ahead ? 1 : 0)) * (plan_.together ? channels : 1);
  const double sum = spectra_.windowSum();
  return blocks > 0 ? 1.0 / (static_cast<double>(blocks) * sum * sum) : 0.0;
}

double Sonogram::amplitude(int plane, int column, size_t line) const {
  return std::sqrt(static_cast<double>(powers(plane, column)[line]) * powerScale(column));
}

}  // namespace plumetta
