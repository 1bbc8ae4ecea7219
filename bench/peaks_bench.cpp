// SPDX-License-Identifier: GPL-3.0-or-later
// Building the peak data of a buffer, and asking it for one window's columns.
#include <benchmark/benchmark.h>

#include <cmath>

#include "doc/peak_pyramid.h"

namespace plumetta {
namespace {

constexpr uint32_t kRate = 44100;
constexpr int kColumns = 2000;

void fillTone(CWave& wave, int64_t frames, int channels) {
  if (!wave.create(kRate, channels, 16, frames, kFormatPcm)) std::abort();
  for (size_t i = 0; i < wave.sampleCount(); ++i) {
    wave.samples()[i] = static_cast<float>(static_cast<int32_t>(i * 2654435761u)) * 0x1p-31f;
  }
}

void buildPeaks(benchmark::State& state) {
  const auto channels = static_cast<int>(state.range(0));
  CWave wave;
  fillTone(wave, (int64_t{1} << 27) / channels, channels);
  PeakPyramid peaks;
  for (auto _ : state) {
    peaks.rebuild(wave);
    benchmark::DoNotOptimize(peaks.memoryBytes());
  }
  const double bytes = static_cast<double>(wave.sampleCount() * sizeof(float));
  state.SetBytesProcessed(static_cast<int64_t>(bytes) * state.iterations());
  state.counters["memory_percent"] = 100.0 * static_cast<double>(peaks.memoryBytes()) / bytes;
}
BENCHMARK(buildPeaks)->Arg(1)->Arg(2)->Arg(3)->Arg(6)->Arg(16)->Unit(benchmark::kMillisecond);

// Three hours in stereo; the argument is the number of frames a pixel.
void windowOfColumns(benchmark::State& state) {
  static CWave wave;
  static PeakPyramid peaks;
  if (wave.channels() != 2) {
    fillTone(wave, int64_t{3} * 3600 * kRate, 2);
    peaks.rebuild(wave);
  }
  const double framesPerPixel = state.range(0) > 0 ? static_cast<double>(state.range(0))
                                                   : static_cast<double>(wave.frames()) / kColumns;
  std::vector<PeakColumn> columns(kColumns);
  double first = 0;
  for (auto _ : state) {
    for (int channel = 0; channel < 2; ++channel) {
      peaks.columns(wave, channel, first, framesPerPixel, columns);
      benchmark::DoNotOptimize(columns.data());
    }
    first = std::fmod(first + 1e6, wave.frames() / 2.0);
  }
}
BENCHMARK(windowOfColumns)
    ->Arg(1)
    ->Arg(16)
    ->Arg(255)
    ->Arg(256)
    ->Arg(1000)
    ->Arg(1023)
    ->Arg(1024)
    ->Arg(20000)
    ->Arg(0)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace plumetta
