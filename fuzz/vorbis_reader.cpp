// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as an Ogg Vorbis file: the reader ends, and what it loads hangs together.
#include <cstdlib>

#include "formats/vorbis_reader.h"
#include "support/memory_file_system.h"

using namespace plumetta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  MemoryFileSystem files;
  files.contents["in"].assign(reinterpret_cast<const char*>(data), size);
  CWave wave;
  if (loadVorbis(files, "in", wave).status != LoadStatus::loaded) return 0;
  if (wave.frames() < 0 || wave.channels() < 1 || wave.channels() > kMaxChannels) std::abort();
  for (size_t i = 0; i < wave.sampleCount(); ++i) {
    if (!(wave.samples()[i] >= -1.0001f && wave.samples()[i] <= 1.0f)) std::abort();
  }
  return 0;
}
