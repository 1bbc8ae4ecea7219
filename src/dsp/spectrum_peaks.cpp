// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>
#include <functional>

#include "dsp/spectrum.h"

namespace plumetta {
namespace {

constexpr double kA4Hz = 440.0;
constexpr int kA4Key = 69;

struct Line {
  double db;
  int32_t channel;
};

std::vector<Line> loudestChannels(const SpectrumRecord& record) {
  std::vector<Line> lines;
  lines.reserve(static_cast<size_t>(record.lines));
  for (int32_t i = 0; i < record.lines; ++i) {
    Line loudest{spectrumDb(record.value(i, 0)), 0};
    for (int32_t c = 1; c < record.channels; ++c) {
      const double db = spectrumDb(record.value(i, c));
      if (db > loudest.db) loudest = {db, c};
    }
    lines.push_back(loudest);
  }
  return lines;
}

SpectrumPeak peakAt(const SpectrumRecord& record, const std::vector<Line>& lines, size_t top) {
  const double before = lines[top - 1].db, here = lines[top].db, behind = lines[top + 1].db;
  const double curvature = before - 2.0 * here + behind;
  const double offset = curvature < 0.0 ? 0.5 * (before - behind) / curvature : 0.0;
  return {record.hz(static_cast<double>(top) + offset), here - 0.25 * (before - behind) * offset,
          lines[top].channel};
}

}  // namespace

std::vector<SpectrumPeak> findPeaks(const SpectrumRecord& record, double prominenceDb, size_t most) {
  std::vector<SpectrumPeak> peaks;
  if (record.channels < 1 || record.lines < 3) return peaks;
  const std::vector<Line> lines = loudestChannels(record);
  // Up from a valley by the prominence, to the top, down again by as much: then the top is one to tell.
  bool rising = false;
  size_t top = 0, valley = 0;
  for (size_t i = 1; i < lines.size(); ++i) {
    if (rising) {
      if (lines[i].db > lines[top].db) top = i;
      if (lines[i].db > lines[top].db - prominenceDb) continue;
      peaks.push_back(peakAt(record, lines, top));
      rising = false;
      valley = i;
    } else {
      if (lines[i].db < lines[valley].db) valley = i;
      if (lines[i].db < lines[valley].db + prominenceDb) continue;
      rising = true;
      top = i;
    }
  }
  std::ranges::stable_sort(peaks, std::greater<>(), &SpectrumPeak::db);
  if (peaks.size() > most) peaks.resize(most);
  return peaks;
}

std::string noteName(double hz) {
  constexpr const char* kNames[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
  constexpr double kLowest = 8.0;  // the C five octaves below middle C has 8.18 Hz
  if (!(hz >= kLowest) || !std::isfinite(hz)) return {};
  const double keys = kA4Key + 12.0 * std::log2(hz / kA4Hz);
  const auto key = static_cast<int>(std::lround(keys));
  const auto cents = static_cast<int>(std::lround(100.0 * (keys - key)));
  std::string name = kNames[key % 12] + std::to_string(key / 12 - 1);
  if (cents == 0) return name;
  return name + (cents > 0 ? " +" : " ") + std::to_string(cents) +
         (std::abs(cents) == 1 ? " cent" : " cents");
}

}  // namespace plumetta
