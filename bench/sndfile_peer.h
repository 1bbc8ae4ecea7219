// SPDX-License-Identifier: GPL-3.0-or-later
// What libsndfile does by itself, to stand beside our reading and writing.
#pragma once

#include <benchmark/benchmark.h>
#include <sndfile.h>

#include <cstdlib>

#include "bench_file.h"

namespace plumetta {

inline void loadWithSndfile(benchmark::State& state, const std::string& path) {
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

// Outside of the time: writing over a file would make the file system flush the old one first.
inline void forget(benchmark::State& state, const std::string& path) {
  state.PauseTiming();
  std::filesystem::remove(path);
  state.ResumeTiming();
}

// `container`: SF_FORMAT_WAV; 16 bits are written.
inline void saveWithSndfile(benchmark::State& state, const std::string& path, int container) {
  const auto wave = benchWave();
  for (auto _ : state) {
    SF_INFO info{};
    info.samplerate = kBenchRate;
    info.channels = 2;
    info.format = container | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    sf_writef_float(file, wave->samples(), wave->frames());
    sf_close(file);
    forget(state, path);
  }
}

}  // namespace plumetta
