// SPDX-License-Identifier: GPL-3.0-or-later
// FLAC in and out of a buffer, ten minutes of stereo, beside libsndfile doing the same by itself.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "bench_file.h"
#include "formats/sndfile_formats.h"

#ifdef PLUMETTA_HAVE_SNDFILE
#include <sndfile.h>
#endif

namespace plumetta {
namespace {

const std::string& flacFile() {
  static const std::string path = [] {
    const std::string file = benchFile() + ".flac";
    saveSndfile(kFlac, nativeFileSystem(), file, *benchWave(), {SyncToDisk::no});
    return file;
  }();
  return path;
}

void loadFlac(benchmark::State& state) {
  const std::string& path = flacFile();
  for (auto _ : state) {
    CWave wave;
    const auto result = loadSndfile(kFlac, nativeFileSystem(), path, wave);
    if (result.status != LoadStatus::loaded) state.SkipWithError("load");
  }
}
BENCHMARK(loadFlac)->Unit(benchmark::kMillisecond)->UseRealTime();

void saveFlac(benchmark::State& state) {
  const auto wave = benchWave();
  const std::string path = benchFile() + ".saved.flac";
  for (auto _ : state) {
    if (!saveSndfile(kFlac, nativeFileSystem(), path, *wave, {SyncToDisk::no}).saved)
      state.SkipWithError("save");
  }
}
BENCHMARK(saveFlac)->Unit(benchmark::kMillisecond)->UseRealTime();

#ifdef PLUMETTA_HAVE_SNDFILE
void loadFlacWithLibsndfile(benchmark::State& state) {
  const std::string& path = flacFile();
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
BENCHMARK(loadFlacWithLibsndfile)->Unit(benchmark::kMillisecond)->UseRealTime();

void saveFlacWithLibsndfile(benchmark::State& state) {
  const auto wave = benchWave();
  const std::string path = benchFile() + ".saved.flac";
  for (auto _ : state) {
    SF_INFO info{};
    info.samplerate = kBenchRate;
    info.channels = 2;
    info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    sf_writef_float(file, wave->samples(), wave->frames());
    sf_close(file);
  }
}
BENCHMARK(saveFlacWithLibsndfile)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

}  // namespace
}  // namespace plumetta
