// SPDX-License-Identifier: GPL-3.0-or-later
// Effects over a ten-minute buffer beside this machine's own loops over the same bytes: a scale in place for
// those that read and write, so that the ratio says how much of the memory's speed an effect reaches.
#include <benchmark/benchmark.h>

#include "bench_file.h"
#include "dsp/amplitude.h"
#include "dsp/statistics.h"

namespace plumetta {
namespace {

CWave& buffer() {
  static const auto wave = benchWave();
  return *wave;
}

void scaleInPlace(benchmark::State& state) {
  CWave& wave = buffer();
  const auto count = wave.sampleCount();
  float factor = 1.0f;
  for (auto _ : state) {
    benchmark::DoNotOptimize(factor);
    float* samples = wave.samples();
    for (size_t i = 0; i < count; ++i) samples[i] *= factor;
    benchmark::ClobberMemory();
  }
}
BENCHMARK(scaleInPlace)->Unit(benchmark::kMillisecond);

// Argument 0 works on all channels, 1 on one of two.
template <class Effect>
void run(benchmark::State& state, Effect effect) {
  CWave& wave = buffer();
  wave.setActive(state.range(0) == 0 ? ActiveOperation::all : ActiveOperation::solo, 0);
  const FrameRange all{0, wave.frames() - 1};
  for (auto _ : state) effect(wave, all);
  wave.setActive(ActiveOperation::all, 0);
}

#define PLUMETTA_EFFECT_BENCH(name, call)                                   \
  void name(benchmark::State& state) {                                      \
    run(state, [](CWave& wave, [[maybe_unused]] FrameRange all) { call; }); \
  }                                                                         \
  BENCHMARK(name)->Unit(benchmark::kMillisecond)->Arg(0)->Arg(1)

PLUMETTA_EFFECT_BENCH(volumeEffect, volume(wave, all, 1.0f));
PLUMETTA_EFFECT_BENCH(normalizeEffect, normalize(wave, all, -1.0));
PLUMETTA_EFFECT_BENCH(invertEffect, invert(wave, all));
PLUMETTA_EFFECT_BENCH(reverseEffect, reverse(wave, all));
PLUMETTA_EFFECT_BENCH(removeDcEffect, removeDc(wave, all));
PLUMETTA_EFFECT_BENCH(swapEffect, swapStereo(wave, all));
PLUMETTA_EFFECT_BENCH(clipEffect, clip(wave, all, 0.0));
PLUMETTA_EFFECT_BENCH(statisticsOfAll, benchmark::DoNotOptimize(analyzeLevels(wave, 0, 0)));

// Argument: the curve. The buffer is made anew each time, for repeated fades end in slow denormal numbers.
void fadeEffect(benchmark::State& state) {
  CWave& wave = buffer();
  const auto fresh = benchWave();
  for (auto _ : state) {
    fade(wave, {0, wave.frames() - 1}, static_cast<FadeCurve>(state.range(0)), FadeDirection::in);
    state.PauseTiming();
    wave.copyFrom(*fresh);
    state.ResumeTiming();
  }
}
BENCHMARK(fadeEffect)->Unit(benchmark::kMillisecond)->DenseRange(0, 4);

}  // namespace
}  // namespace plumetta
