// SPDX-License-Identifier: GPL-3.0-or-later
// Ten minutes of stereo to MP3 and back, beside the two libraries doing nothing but their own work.
#include <benchmark/benchmark.h>
#include <mad.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "bench_file.h"
#include "formats/mp3_reader.h"
#include "formats/mp3_writer.h"
#include "formats/sample_codec.h"

namespace plumetta {
namespace {

// The file of all benchmarks, written once a run.
const std::string& mp3File() {
  static const std::string path = [] {
    const std::string file = benchFile() + ".mp3";
    saveMp3(nativeFileSystem(), file, *benchWave(), {SyncToDisk::no, 128});
    return file;
  }();
  return path;
}

void saveAsMp3(benchmark::State& state) {
  const auto wave = benchWave();
  const std::string path = benchFile() + ".saved.mp3";
  const SaveOptions options{SyncToDisk::no, 128};
  for (auto _ : state) {
    if (!saveMp3(nativeFileSystem(), path, *wave, options).saved) state.SkipWithError("save");
  }
}
BENCHMARK(saveAsMp3)->Unit(benchmark::kMillisecond)->UseRealTime();

// The encoder alone, on 16-bit samples that stand ready; nothing is written.
void encodeWithTheLibrary(benchmark::State& state) {
  const auto wave = benchWave();
  std::vector<int16_t> samples(wave->sampleCount());
  toPcm16(wave->samples(), samples.data(), samples.size());
  std::vector<uint8_t> bytes;
  for (auto _ : state) {
    const auto encoder = loadMp3Encoder();
    bool good = encoder != nullptr && encoder->begin(*mp3StreamFor(2, kBenchRate, 128));
    for (size_t done = 0; good && done < samples.size();) {
      const size_t count = std::min(encoder->samplesPerChunk(), samples.size() - done);
      good = encoder->encode({samples.data() + done, count}, bytes);
      done += count;
    }
    if (!good || !encoder->finish(bytes)) state.SkipWithError("encode");
  }
}
BENCHMARK(encodeWithTheLibrary)->Unit(benchmark::kMillisecond)->UseRealTime();

void loadFromMp3(benchmark::State& state) {
  const std::string& path = mp3File();
  for (auto _ : state) {
    CWave wave;
    if (loadMp3(nativeFileSystem(), path, wave).status != LoadStatus::loaded) state.SkipWithError("load");
    benchmark::DoNotOptimize(wave.samples());
  }
}
BENCHMARK(loadFromMp3)->Unit(benchmark::kMillisecond)->UseRealTime();

struct Bytes {
  std::vector<uint8_t> data;
  bool handed = false;
};

mad_flow handBytes(void* self, mad_stream* stream) {
  auto& bytes = *static_cast<Bytes*>(self);
  if (std::exchange(bytes.handed, true)) return MAD_FLOW_STOP;
  mad_stream_buffer(stream, bytes.data.data(), bytes.data.size());
  return MAD_FLOW_CONTINUE;
}

// The decoder alone, on bytes that stand ready; what it decodes is dropped.
void decodeWithTheLibrary(benchmark::State& state) {
  std::error_code error;
  const auto file = nativeFileSystem().openForReading(mp3File(), error);
  Bytes bytes{std::vector<uint8_t>(file ? file->size() : 0)};
  if (file) file->read(bytes.data.data(), bytes.data.size(), error);
  for (auto _ : state) {
    bytes.handed = false;
    mad_decoder decoder;
    mad_decoder_init(
        &decoder, &bytes, handBytes, nullptr, nullptr,
        [](void*, const mad_header*, mad_pcm*) { return MAD_FLOW_CONTINUE; },
        [](void*, mad_stream*, mad_frame*) { return MAD_FLOW_CONTINUE; }, nullptr);
    mad_decoder_run(&decoder, MAD_DECODER_MODE_SYNC);
    mad_decoder_finish(&decoder);
  }
}
BENCHMARK(decodeWithTheLibrary)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace plumetta
