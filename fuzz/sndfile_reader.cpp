// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a file of every format that the table knows: what loads is sound, and can be saved as AIFF and
// loaded again.
#include "formats/format.h"
#include "formats/sndfile_formats.h"
#include "input_file.h"

using namespace plumetta;

namespace {

// Compressed silence may unfold to far more than a machine has.
constexpr int kMostReports = 2000;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  InputFile files("in", data, size);
  const Format* format = formatOfContent(files, "in");
  if (format == nullptr) return 0;
  int reports = 0;
  CWave wave;
  wave.progress = {[](float, void* count) { return ++*static_cast<int*>(count) < kMostReports; }, &reports};
  const auto loaded = format->read(files, "in", {}, wave);
  if (loaded.status != LoadStatus::loaded) return 0;
  wave.progress = {};
  require(wave.channels() >= 1 && wave.channels() <= kMaxChannels && wave.frames() >= 0);
  for (const Marker& marker : wave.markers) require(marker.position <= std::max(wave.frames() - 1, 0));
  const SaveResult saved = saveSndfile(kAiff, files, "out", wave, {SyncToDisk::no});
  if (!saved.saved) return 0;
  CWave again;
  require(loadSndfile(kAiff, files, "out", again).status == LoadStatus::loaded);
  require(again.frames() == wave.frames() + (saved.addedEvenFrame ? 1 : 0) &&
          again.channels() == wave.channels());
  return 0;
}
