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

// Copy and paste of half the file: what the clipboard does, beside the bare moves into memory taken alike.

void copyHalf(benchmark::State& state) {
  const auto wave = benchWave();
  for (auto _ : state) {
    CWave clipboard;
    wave->copyRangeTo(clipboard, 0, kMiddle - 1);
    benchmark::DoNotOptimize(clipboard.samples());
  }
}
BENCHMARK(copyHalf)->Unit(benchmark::kMillisecond);

void copyHalfPlainly(benchmark::State& state) {
  const auto wave = benchWave();
  const size_t bytes = size_t{2} * kMiddle * sizeof(float);
  for (auto _ : state) {
    BlockMemory block;
    block.resizeZeroed(bytes);
    std::memcpy(block.data(), wave->samples(), bytes);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(copyHalfPlainly)->Unit(benchmark::kMillisecond);

void pasteAndCutHalf(benchmark::State& state) {
  const auto wave = benchWave();
  CWave clipboard;
  wave->copyRangeTo(clipboard, 0, kMiddle - 1);
  for (auto _ : state) {
    wave->insertBuffer(clipboard, kMiddle);
    wave->deleteRange(kMiddle, 2 * kMiddle - 1);
  }
}
BENCHMARK(pasteAndCutHalf)->Unit(benchmark::kMillisecond);

// The same growth, moves and shrinking without a buffer's bookkeeping.
void pasteAndCutHalfPlainly(benchmark::State& state) {
  const auto wave = benchWave();
  const size_t half = size_t{2} * kMiddle * sizeof(float);
  const size_t tail = size_t{2} * (kBenchFrames - kMiddle) * sizeof(float);
  BlockMemory block;
  BlockMemory clipboard;
  clipboard.resize(half);
  block.resize(half + tail);
  std::memcpy(clipboard.data(), wave->samples(), half);
  std::memcpy(block.data(), wave->samples(), half + tail);
  for (auto _ : state) {
    block.resize(2 * half + tail);
    auto* bytes = static_cast<char*>(block.data());
    std::memmove(bytes + 2 * half, bytes + half, tail);
    std::memcpy(bytes + half, clipboard.data(), half);
    std::memmove(bytes + half, bytes + 2 * half, tail);
    block.resize(half + tail);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(pasteAndCutHalfPlainly)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace plumetta
