// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

// RIFF WAVE by its first twelve bytes, and its sibling whose sizes have 64 bits.
Likeness probeWav(const FileHead& head);
Likeness probeRf64(const FileHead& head);

// Fills `wave` from a WAV file: samples, loops ("smpl"), markers ("cue ") and envelope ("otom"). Sizes that
// reach beyond the file are taken for what is there, and damaged annotations never cost the audio.
// RF64 is read likewise.
LoadResult loadWav(FileSystem& files, const std::string& path, const OpenOptions& options, CWave& wave);
inline LoadResult loadWav(FileSystem& files, const std::string& path, CWave& wave) {
  return loadWav(files, path, {}, wave);
}
// The same from an open file; the buffer's file name stays.
LoadResult readWav(File& file, CWave& wave, const OpenOptions& options = {});

}  // namespace plumetta
