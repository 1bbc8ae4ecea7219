// SPDX-License-Identifier: GPL-3.0-or-later
// Filters and changes of rate and pitch over a ten-minute stereo buffer; items are samples (frames ×
// channels), of the output where that has another length.
#include <benchmark/benchmark.h>

#include "bench_file.h"
#include "dsp/fir_filter.h"
#include "dsp/moving_average.h"
#include "dsp/phase_vocoder.h"
#include "dsp/recursive_filters.h"
#include "dsp/resample.h"

namespace plumetta {
namespace {

template <class Filter>
void filterAll(benchmark::State& state, Filter filter) {
  const auto wave = benchWave();
  for (auto _ : state) filter(*wave);
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(wave->sampleCount()));
}

void rc(benchmark::State& state) {
  filterAll(state, [](CWave& wave) { rcFilter(wave, true, 0.5); });
}
BENCHMARK(rc)->Unit(benchmark::kMillisecond);

void band(benchmark::State& state) {
  filterAll(state, [](CWave& wave) { bandFilter(wave, 0.02, 0.005, true); });
}
BENCHMARK(band)->Unit(benchmark::kMillisecond);

// Argument: the poles.
void chebyshev(benchmark::State& state) {
  const auto poles = static_cast<int>(state.range(0));
  filterAll(state, [=](CWave& wave) { chebyshevFilter(wave, poles, 0.2, 0.5, PassType::low); });
}
BENCHMARK(chebyshev)->Unit(benchmark::kMillisecond)->Arg(2)->Arg(4)->Arg(8)->Arg(16);

void movingAverageOfThirty(benchmark::State& state) {
  filterAll(state, [](CWave& wave) { movingAverage(wave, 30); });
}
BENCHMARK(movingAverageOfThirty)->Unit(benchmark::kMillisecond);

// Argument: the taps. On all cores.
void windowedSinc(benchmark::State& state) {
  FirFilter filter;
  filter.setKernelLength(static_cast<int32_t>(state.range(0)));
  filter.setChannels(2);
  filterAll(state, [&](CWave& wave) { filter.process(wave.samples(), wave.frames()); });
}
BENCHMARK(windowedSinc)
    ->Unit(benchmark::kMillisecond)
    ->Arg(101)
    ->Arg(501)
    ->Arg(1001)
    ->Arg(8001)
    ->UseRealTime();

// Arguments: the target rate and the kernel. On all cores.
void resampling(benchmark::State& state) {
  const auto wave = benchWave();
  const ResampleSettings settings{static_cast<double>(state.range(0)), true,
                                  static_cast<int>(state.range(1))};
  int64_t samples = 0;
  for (auto _ : state) {
    const auto block =
        resampled(wave->samples(), wave->frames(), wave->channels(), wave->sampleRate(), settings, {});
    samples += int64_t{block->frames} * wave->channels();
  }
  state.SetItemsProcessed(samples);
}
BENCHMARK(resampling)
    ->Unit(benchmark::kMillisecond)
    ->Args({22050, 0})
    ->Args({48000, 0})
    ->Args({48000, 5})
    ->Args({22050, 10})
    ->Args({32000, 10})
    ->UseRealTime();

void vocoder(benchmark::State& state) {
  filterAll(state, [](CWave& wave) { shiftPitch(wave, {512, 32, 1.2}); });
}
BENCHMARK(vocoder)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

}  // namespace
}  // namespace plumetta
