// SPDX-License-Identifier: GPL-3.0-or-later
// FLAC in and out of a buffer, ten minutes of stereo, beside libsndfile doing the same by itself.
#include <benchmark/benchmark.h>

#include "bench_file.h"
#include "formats/flac_reader.h"
#include "formats/sndfile_formats.h"
#include "sndfile_peer.h"

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
    const auto result = loadFlac(nativeFileSystem(), path, {}, wave);
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
    forget(state, path);
  }
}
BENCHMARK(saveFlac)->Unit(benchmark::kMillisecond)->UseRealTime();

void loadFlacWithLibsndfile(benchmark::State& state) { loadWithSndfile(state, flacFile()); }
BENCHMARK(loadFlacWithLibsndfile)->Unit(benchmark::kMillisecond)->UseRealTime();

void saveFlacWithLibsndfile(benchmark::State& state) {
  saveWithSndfile(state, benchFile() + ".saved.flac", SF_FORMAT_FLAC);
}
BENCHMARK(saveFlacWithLibsndfile)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace plumetta
