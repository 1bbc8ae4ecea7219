// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as FLAC, bare or in Ogg: the reader ends, and what it loads hangs together.
#include <cmath>

#include "formats/flac_reader.h"
#include "input_file.h"

using namespace plumetta;

namespace {

// A frame of silence may unfold to 2 MiB.
constexpr int kMostReports = 500;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  InputFile files("in", data, size);
  int reports = 0;
  CWave wave;
  wave.progress = {[](float done, void* count) {
                     require(done >= 0 && done <= 1);
                     return ++*static_cast<int*>(count) < kMostReports;
                   },
                   &reports};
  if (loadFlac(files, "in", {}, wave).status != LoadStatus::loaded) return 0;
  require(wave.channels() >= 1 && wave.channels() <= 8 && wave.frames() >= 0);
  require(wave.bitsPerSample() % 8 == 0 && wave.bitsPerSample() <= 32);
  for (size_t i = 0; i < wave.sampleCount(); ++i) require(std::isfinite(wave.samples()[i]));
  return 0;
}
