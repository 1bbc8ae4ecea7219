// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

Likeness probeWavpack(const FileHead& head);

// Reads a WavPack file through the system's library, loaded for the time of the call. The buffer gets the
// file's width, rounded up to 8, 16, 24 or 32 bits.
LoadResult loadWavpack(FileSystem& files, const std::string& path, CWave& wave);

}  // namespace plumetta
