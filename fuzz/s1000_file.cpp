// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a sampler's sample: whatever loads is saved and loads again as the same.
#include "formats/s1000_file.h"
#include "input_file.h"

using namespace plumetta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  InputFile files("in", data, size);
  CWave wave;
  if (loadS1000(files, "in", wave).status != LoadStatus::loaded) return 0;
  require(wave.sampleCount() <= size / 2);
  SaveOptions options;
  options.sync = SyncToDisk::no;
  require(saveS1000(files, "out", wave, options).saved);
  CWave again;
  require(loadS1000(files, "out", again).status == LoadStatus::loaded);
  require(again.frames() == wave.frames() && again.loops.count() == wave.loops.count());
  for (int i = 0; i < wave.loops.count(); ++i) {
    require(again.loops.start(i) == wave.loops.start(i) && again.loops.end(i) == wave.loops.end(i));
  }
  return 0;
}
