// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

// RIFF WAVE by its first twelve bytes.
Likeness probeWav(const FileHead& head);

// Fills `wave` from a WAV file: samples, loops ("smpl"), markers ("cue ") and envelope ("otom"). Sizes that
// reach beyond the file are taken for what is there, and damaged annotations never cost the audio.
LoadResult loadWav(FileSystem& files, const std::string& path, CWave& wave);
// The same from an open file; the buffer's file name stays.
LoadResult readWav(File& file, CWave& wave);

}  // namespace plumetta
