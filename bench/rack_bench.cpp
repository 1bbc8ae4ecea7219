// SPDX-License-Identifier: GPL-3.0-or-later
// What the rack itself costs: a block in playing, by the number of plug-ins, and the chain over ten minutes
// beside the same plug-in called alone. PLUMETTA_BENCH_PLUGIN names the plug-in; without it none is measured.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

#include "core/audio_lock.h"
#include "core/wave.h"
#include "platform/paths.h"
#include "vst/rack.h"

namespace plumetta {
namespace {

constexpr int kRate = 44100;
constexpr int kBlock = Rack::kOfflineBlockFrames;

// Null, with the benchmark skipped, when there is none.
const char* pluginPath(benchmark::State& state) {
  const char* path = std::getenv("PLUMETTA_BENCH_PLUGIN");
  if (path == nullptr) state.SkipWithError("PLUMETTA_BENCH_PLUGIN is not set");
  return path;
}

void playing(benchmark::State& state) {
  const char* path = pluginPath(state);
  if (path == nullptr) return;
  VstHost host;
  host.setBlockSize(Rack::kBufferFrames);
  Rack rack(host);
  for (int i = 0; i < state.range(0); ++i) rack.add(absolutePath(path));
  std::vector<float> left(256, 0.1f), right(256, 0.1f);
  float* channels[] = {left.data(), right.data()};
  for (auto _ : state) rack.process(channels, 2, 256);
}
BENCHMARK(playing)->Arg(0)->Arg(1)->Arg(16);

std::unique_ptr<CWave> tenMinutes() {
  constexpr int kFloatBits = 32;
  auto wave = std::make_unique<CWave>();
  wave->create(kRate, 2, kFloatBits, int64_t{kRate} * 600, kFormatFloat);
  for (int32_t frame = 0; frame < wave->frames(); ++frame) {
    wave->setSample(frame, 0, static_cast<float>(frame % 100) / 100.0f);
  }
  return wave;
}

void pluginAlone(benchmark::State& state) {
  const char* path = pluginPath(state);
  if (path == nullptr) return;
  VstHost host;
  VstPlugin& plugin = *host.plugin(host.open(absolutePath(path)));
  PinBuffers inputs(kBlock), outputs(kBlock);
  const int64_t blocks = int64_t{kRate} * 600 / kBlock;
  for (auto _ : state) {
    for (int64_t i = 0; i < blocks; ++i) {
      for (int k = 0; k < kBlock; ++k) inputs.pointers()[0][k] = static_cast<float>(k % 100) / 100.0f;
      plugin.processReplacing(inputs.pointers(), outputs.pointers(), kBlock);
    }
  }
}
BENCHMARK(pluginAlone)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void overTenMinutes(benchmark::State& state) {
  const char* path = pluginPath(state);
  if (path == nullptr) return;
  VstHost host;
  host.setBlockSize(Rack::kBufferFrames);
  Rack rack(host);
  rack.add(absolutePath(path));
  const auto wave = tenMinutes();
  AudioLock lock;
  for (auto _ : state) rack.applyTo(*wave, lock, 0, 0, {});
}
BENCHMARK(overTenMinutes)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

}  // namespace
}  // namespace plumetta
