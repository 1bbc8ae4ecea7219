// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a WAV file: whatever loads is saved and loads again as the same.
#include "formats/wav_reader.h"
#include "formats/wav_writer.h"
#include "input_file.h"

using namespace plumetta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  InputFile files("in", data, size);
  CWave wave;
  const auto loaded = loadWav(files, "in", wave);
  if (loaded.status != LoadStatus::loaded) return 0;
  require(wave.sampleCount() <= 2 * size);  // two samples a byte at most
  require(saveWav(files, "out", wave, SyncToDisk::no).saved);
  CWave again;
  require(loadWav(files, "out", again).status == LoadStatus::loaded);
  require(again.frames() == wave.frames() + (wave.needsEvenFrame() ? 1 : 0));
  require(again.markers.count() == wave.markers.count() && again.loops.count() == wave.loops.count());
  require(again.envelope.active() == wave.envelope.active());
  return 0;
}
