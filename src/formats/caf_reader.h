// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

// Reads a CAF through libsndfile, ALAC without a depth in the description chunk too: some programs leave it
// to the codec's own chunk. Of those, three and more channels come in the order of a WAV.
LoadResult loadCaf(FileSystem& files, const std::string& path, const OpenOptions& options, CWave& wave);

}  // namespace plumetta
