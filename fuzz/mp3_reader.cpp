// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as MPEG audio: the probe bears them, and whatever loads is sound samples of a size in bounds.
#include <cmath>

#include "formats/mp3_reader.h"
#include "input_file.h"

using namespace plumetta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  InputFile files("in.mp3", data, size);
  formatOfContent(files, "in.mp3");
  CWave wave;
  const LoadResult result = loadMp3(files, "in.mp3", wave);
  require((result.status == LoadStatus::loaded) == result.reason.empty());
  if (result.status != LoadStatus::loaded) {
    require(wave.frames() == 0);
    return 0;
  }
  require(wave.frames() > 0 && wave.channels() <= 2 && wave.sampleRate() >= 8000);
  // The shortest frame has 24 bytes.
  require(static_cast<size_t>(wave.frames()) <= (size / 24 + 1) * 1152);
  for (size_t i = 0; i < wave.sampleCount(); ++i) require(std::isfinite(wave.samples()[i]));
  return 0;
}
