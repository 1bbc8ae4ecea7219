// SPDX-License-Identifier: GPL-3.0-or-later
// Loading and saving a ten-minute file, beside libsndfile doing the same in the same run.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "bench_file.h"
#include "formats/wav_reader.h"

#ifdef PLUMETTA_HAVE_SNDFILE
#include <sndfile.h>
#endif

namespace plumetta {
namespace {

// Outside of the time: writing over a file would make the file system flush the old one first.
void forget(benchmark::State& state, const std::string& path) {
  state.PauseTiming();
  std::filesystem::remove(path);
  state.ResumeTiming();
}

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

#ifdef PLUMETTA_HAVE_SNDFILE
void loadWithLibsndfile(benchmark::State& state) {
  const std::string& path = benchFile();
  for (auto _ : state) {
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    const auto bytes = static_cast<size_t>(info.frames * info.channels) * sizeof(float);
    auto* samples = static_cast<float*>(std::malloc(bytes));
    benchmark::DoNotOptimize(sf_readf_float(file, samples, info.frames));
    std::free(samples);
    sf_close(file);
  }
}
BENCHMARK(loadWithLibsndfile)->Unit(benchmark::kMillisecond)->UseRealTime();

void saveWithLibsndfile(benchmark::State& state) {
  const auto wave = benchWave();
  const std::string path = benchFile() + ".saved.wav";
  for (auto _ : state) {
    SF_INFO info{};
    info.samplerate = kBenchRate;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    sf_writef_float(file, wave->samples(), wave->frames());
    sf_close(file);
    forget(state, path);
  }
}
BENCHMARK(saveWithLibsndfile)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

}  // namespace
}  // namespace plumetta
