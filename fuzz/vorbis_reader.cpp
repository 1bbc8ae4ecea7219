// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as an Ogg Vorbis file: the reader ends, and what it loads hangs together.
#include "formats/vorbis_reader.h"
#include "formats/vorbis_library.h"
#include "input_file.h"

using namespace plumetta;

// libvorbisfile 1.3.7 forgets the serial numbers of a first link whose headers are damaged: ov_open() fails
// and leaves eight bytes of each behind, whoever calls it.
extern "C" const char* __lsan_default_suppressions() { return "leak:libvorbisfile\n"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // Stays loaded, or its name could no longer be told at the end.
  static VorbisLibrary library;
  static const bool loaded = library.load();
  require(loaded);
  InputFile files("in", data, size);
  CWave wave;
  if (loadVorbis(files, "in", wave).status != LoadStatus::loaded) return 0;
  require(wave.frames() >= 0 && wave.channels() >= 1 && wave.channels() <= kMaxChannels);
  for (size_t i = 0; i < wave.sampleCount(); ++i) {
    require(wave.samples()[i] >= -1.0001f && wave.samples()[i] <= 1.0f);
  }
  return 0;
}
