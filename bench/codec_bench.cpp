// SPDX-License-Identifier: GPL-3.0-or-later
// Loading ten minutes of compressed stereo, beside the codec libraries alone decoding the same file into one
// small buffer. The files are made by oggenc and wavpack.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#include "bench_file.h"
#include "formats/vorbis_library.h"
#include "formats/vorbis_reader.h"
#include "formats/wavpack_library.h"
#include "formats/wavpack_reader.h"

namespace plumetta {
namespace {

std::string encodedBy(const std::string& encoder, const std::string& extension) {
  const std::string path = benchFile() + "." + extension;
  const std::string command = encoder + " \"" + benchFile() + "\" -o \"" + path + "\"";
  return std::system(command.c_str()) == 0 ? path : "";
}

const std::string& vorbisFile() {
  static const std::string path = encodedBy("oggenc -Q", "ogg");
  return path;
}

const std::string& wavpackFile() {
  static const std::string path = encodedBy("wavpack -q -y", "wv");
  return path;
}

using Loader = LoadResult (*)(FileSystem&, const std::string&, CWave&);

void load(benchmark::State& state, const std::string& path, Loader loader) {
  for (auto _ : state) {
    CWave wave;
    if (loader(nativeFileSystem(), path, wave).status != LoadStatus::loaded ||
        wave.frames() != kBenchFrames) {
      state.SkipWithError("load");
    }
    benchmark::DoNotOptimize(wave.samples());
  }
}

void loadVorbisFile(benchmark::State& state) { load(state, vorbisFile(), loadVorbis); }
BENCHMARK(loadVorbisFile)->Unit(benchmark::kMillisecond)->UseRealTime();

void decodeWithLibvorbis(benchmark::State& state) {
  VorbisLibrary library;
  if (!library.load() || vorbisFile().empty())
    return state.SkipWithError("libvorbisfile or oggenc is missing");
  const VorbisCallbacks stdio{
      [](void* to, size_t size, size_t items, void* f) {
        return std::fread(to, size, items, static_cast<FILE*>(f));
      },
      [](void* f, int64_t at, int whence) { return std::fseek(static_cast<FILE*>(f), at, whence); },
      [](void* f) { return std::fclose(static_cast<FILE*>(f)); },
      [](void* f) { return std::ftell(static_cast<FILE*>(f)); }};
  for (auto _ : state) {
    OggVorbisFile stream{};
    library.openCallbacks(std::fopen(vorbisFile().c_str(), "rb"), &stream, nullptr, 0, stdio);
    std::array<char, 4096> buffer;
    int section = 0;
    while (library.read(&stream, buffer.data(), 4096, 0, 2, 1, &section) > 0) {
      benchmark::DoNotOptimize(buffer.data());
    }
    library.clear(&stream);
  }
}
BENCHMARK(decodeWithLibvorbis)->Unit(benchmark::kMillisecond)->UseRealTime();

void loadWavpackFile(benchmark::State& state) { load(state, wavpackFile(), loadWavpack); }
BENCHMARK(loadWavpackFile)->Unit(benchmark::kMillisecond)->UseRealTime();

void decodeWithLibwavpack(benchmark::State& state) {
  WavpackLibrary library;
  if (!library.load() || wavpackFile().empty())
    return state.SkipWithError("libwavpack or wavpack is missing");
  for (auto _ : state) {
    std::array<char, kWavpackErrorBytes> error;
    WavpackContext* file = library.openFileInput(wavpackFile().c_str(), error.data(), 0, 0);
    std::array<int32_t, 1024> words;
    while (library.unpackSamples(file, words.data(), 512) > 0) benchmark::DoNotOptimize(words.data());
    library.closeFile(file);
  }
}
BENCHMARK(decodeWithLibwavpack)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace plumetta
