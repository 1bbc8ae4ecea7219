// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a WavPack file, which the library opens by its name: the reader ends, and what it loads hangs
// together.
#include <cstdlib>

#include "formats/wavpack_reader.h"
#include "support/temporary_folder.h"

using namespace plumetta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const TemporaryFolder folder;
  const std::string path = folder.file("in.wv");
  writeBytes(path, std::string(reinterpret_cast<const char*>(data), size));
  CWave wave;
  if (loadWavpack(nativeFileSystem(), path, wave).status != LoadStatus::loaded) return 0;
  if (wave.frames() < 0 || wave.channels() < 1 || wave.channels() > kMaxChannels) std::abort();
  volatile float last = 0;
  for (size_t i = 0; i < wave.sampleCount(); ++i) last = wave.samples()[i];
  (void)last;
  return 0;
}
