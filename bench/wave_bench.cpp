// SPDX-License-Identifier: GPL-3.0-or-later
// Edits of a ten-minute buffer beside the bare memory moves that they need.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench_file.h"
#include "core/undo_step.h"

namespace plumetta {
namespace {

constexpr int32_t kClipFrames = kBenchRate;
constexpr int32_t kMiddle = kBenchFrames / 2;

void insertAndDeleteInTheMiddle(benchmark::State& state) {
  const auto wave = benchWave();
  CWave clip;
  clip.create(kBenchRate, 2, 16, kClipFrames, kFormatPcm);
  for (auto _ : state) {
    wave->insertBuffer(clip, kMiddle);
    wave->deleteRange(kMiddle, kMiddle + kClipFrames - 1);
  }
}
BENCHMARK(insertAndDeleteInTheMiddle)->Unit(benchmark::kMillisecond);

void moveTheTailUpAndDown(benchmark::State& state) {
  const auto wave = benchWave();
  wave->resize(kBenchFrames + kClipFrames, 2);
  std::memset(wave->samples() + size_t{2} * kBenchFrames, 0, size_t{2} * kClipFrames * sizeof(float));
  float* middle = wave->samples() + size_t{2} * kMiddle;
  const size_t bytes = size_t{2} * (kBenchFrames - kMiddle) * sizeof(float);
  for (auto _ : state) {
    std::memmove(middle + size_t{2} * kClipFrames, middle, bytes);
    std::memmove(middle, middle + size_t{2} * kClipFrames, bytes);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(moveTheTailUpAndDown)->Unit(benchmark::kMillisecond);

void recordAnUndoStep(benchmark::State& state) {
  const auto wave = benchWave();
  for (auto _ : state) {
    UndoStep step(UndoKind::wholeFile, *wave, ViewState{}, nativeFileSystem());
    step.keepInMemory(*wave);
    benchmark::DoNotOptimize(step.holdsSamples());
  }
}
BENCHMARK(recordAnUndoStep)->Unit(benchmark::kMillisecond);

void copyTheSamples(benchmark::State& state) {
  const auto wave = benchWave();
  for (auto _ : state) {
    BlockMemory block;
    block.resize(wave->sampleCount() * sizeof(float));
    std::memcpy(block.data(), wave->samples(), block.size());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(copyTheSamples)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace plumetta
