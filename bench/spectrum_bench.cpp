// SPDX-License-Identifier: GPL-3.0-or-later
// The averaged spectrum and the sonogram of the ten-minute buffer, and the eight transforms of LaneTransform
// beside a plain one.
#include <benchmark/benchmark.h>

#include "bench_file.h"
#include "dsp/sonogram.h"
#include "dsp/spectrum.h"
#include "dsp/transform.h"

namespace plumetta {
namespace {

// Argument: frames a block.
void spectrumOfTenMinutes(benchmark::State& state) {
  static const auto wave = benchWave();
  const SpectrumSettings settings{static_cast<int>(state.range(0))};
  for (auto _ : state) {
    benchmark::DoNotOptimize(averagedSpectrum(*wave, {0, wave->frames() - 1}, settings, {}));
  }
}
BENCHMARK(spectrumOfTenMinutes)
    ->Unit(benchmark::kMillisecond)
    ->Arg(256)
    ->Arg(4096)
    ->Arg(65536)
    ->UseRealTime();

// What the sonogram of a window of a thousand columns takes: until each has something to show (0), and all of
// it (1). Second argument: frames a block.
void sonogramOfTenMinutes(benchmark::State& state) {
  static const auto wave = benchWave();
  SonogramPlan plan;
  plan.columns = 1000;
  plan.framesPerColumn = static_cast<double>(wave->frames()) / plan.columns;
  plan.blocksPerColumn = 8;
  plan.spectrum.size = static_cast<int>(state.range(1));
  for (int channel = 0; channel < wave->channels(); ++channel) plan.channels.push_back(channel);
  for (auto _ : state) {
    Sonogram sonogram(*wave, plan);
    while (sonogram.advance(*wave) && (state.range(0) == 1 || !sonogram.overviewDone())) {
    }
    benchmark::DoNotOptimize(sonogram.powers(0, 0).data());
  }
}
BENCHMARK(sonogramOfTenMinutes)
    ->Unit(benchmark::kMillisecond)
    ->ArgsProduct({{0, 1}, {2048, 16384}})
    ->UseRealTime();

void plainTransform(benchmark::State& state) {
  const auto size = static_cast<int>(state.range(0));
  std::vector<double> values(2 * static_cast<size_t>(size), 0.5);
  for (auto _ : state) {
    transform(values.data(), size, 1);
    std::fill(values.begin(), values.end(), 0.5);
  }
}
BENCHMARK(plainTransform)->Unit(benchmark::kMicrosecond)->Arg(4096);

// Eight signals at once.
void laneTransform(benchmark::State& state) {
  const LaneTransform lanes(static_cast<size_t>(state.range(0)));
  std::vector<double> re(lanes.size() * LaneTransform::kLanes, 0.5), im = re;
  for (auto _ : state) {
    lanes.forward(re.data(), im.data());
    std::fill(re.begin(), re.end(), 0.5);
    std::fill(im.begin(), im.end(), 0.5);
  }
}
BENCHMARK(laneTransform)->Unit(benchmark::kMicrosecond)->Arg(4096);

}  // namespace
}  // namespace plumetta
