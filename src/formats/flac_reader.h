// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

// By the first bytes, as Format::probe.
Likeness probeFlac(const FileHead& head);
Likeness probeOggFlac(const FileHead& head);

// Reads FLAC of 4 to 32 bits, bare or in Ogg; the buffer gets the next whole width of 8, 16, 24 or 32 bits
// and floats by the scale of that width. A frame whose checksum fails is silent.
LoadResult loadFlac(FileSystem& files, const std::string& path, const OpenOptions& options, CWave& wave);

}  // namespace plumetta
