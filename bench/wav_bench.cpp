// SPDX-License-Identifier: GPL-3.0-or-later
// Loading and saving a ten-minute file, beside libsndfile doing the same in the same run.
#include <benchmark/benchmark.h>

#include "bench_file.h"
#include "formats/wav_reader.h"
#include "sndfile_peer.h"

namespace plumetta {
namespace {

void loadIntoWave(benchmark::State& state) {
  const std::string& path = benchFile();
  for (auto _ : state) {
    CWave wave;
    if (loadWav(nativeFileSystem(), path, wave).status != LoadStatus::loaded) state.SkipWithError("load");
    benchmark::DoNotOptimize(wave.samples());
  }
}
BENCHMARK(loadIntoWave)->Unit(benchmark::kMillisecond)->UseRealTime();

void saveFromWave(benchmark::State& state) {
  const auto wave = benchWave();
  const std::string path = benchFile() + ".saved.wav";
  for (auto _ : state) {
    if (!saveWav(nativeFileSystem(), path, *wave, SyncToDisk::no).saved) state.SkipWithError("save");
    forget(state, path);
  }
}
BENCHMARK(saveFromWave)->Unit(benchmark::kMillisecond)->UseRealTime();

void loadWithLibsndfile(benchmark::State& state) { loadWithSndfile(state, benchFile()); }
BENCHMARK(loadWithLibsndfile)->Unit(benchmark::kMillisecond)->UseRealTime();

void saveWithLibsndfile(benchmark::State& state) {
  saveWithSndfile(state, benchFile() + ".saved.wav", SF_FORMAT_WAV);
}
BENCHMARK(saveWithLibsndfile)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace plumetta
