// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

// Samples of the S1000 sampler: a header of 150 bytes, then 16-bit little-endian words, mono.

Likeness probeS1000(const FileHead& head);
// The sampler's loops become those of the buffer, its root note the unity note.
LoadResult loadS1000(FileSystem& files, const std::string& path, CWave& wave);
// Mono buffers below 65536 Hz alone; the sampler's name of the sample is made from that of the file.
SaveResult saveS1000(FileSystem& files, const std::string& path, const CWave& wave,
                     const SaveOptions& options);
std::vector<std::string> lossesOfS1000(const CWave& wave);

}  // namespace plumetta
