// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

// Dialogic VOX: ADPCM of 4 bits a sample without a header, mono, 8000 frames a second.

// Taken by its name alone.
Likeness probeVox(const FileHead& head);
LoadResult loadVox(FileSystem& files, const std::string& path, CWave& wave);
// Mono buffers alone. An odd last sample is followed by a silent one.
SaveResult saveVox(FileSystem& files, const std::string& path, const CWave& wave, const SaveOptions& options);
std::vector<std::string> lossesOfVox(const CWave& wave);

}  // namespace plumetta
