// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as an Ogg Vorbis file: the reader ends, and what it loads hangs together.
#include "formats/vorbis_reader.h"
#include "input_file.h"

using namespace plumetta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  InputFile files("in", data, size);
  CWave wave;
  if (loadVorbis(files, "in", wave).status != LoadStatus::loaded) return 0;
  require(wave.frames() >= 0 && wave.channels() >= 1 && wave.channels() <= kMaxChannels);
  for (size_t i = 0; i < wave.sampleCount(); ++i) {
    require(wave.samples()[i] >= -1.0001f && wave.samples()[i] <= 1.0f);
  }
  return 0;
}
