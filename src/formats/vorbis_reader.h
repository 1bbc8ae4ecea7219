// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

Likeness probeVorbis(const FileHead& head);

// Reads an Ogg Vorbis file through the system's library, loaded for the time of the call, as 16-bit audio.
// Holes in the stream are skipped. A chained file ends where the rate or the channels change.
LoadResult loadVorbis(FileSystem& files, const std::string& path, CWave& wave);

}  // namespace plumetta
