// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

// Creative Voice files: blocks of sound, silence, markers and repeats. Sound of 8 and 16 bits, µ-law and
// A-law; blocks of another format than the first end the file.
LoadResult loadVoc(FileSystem& files, const std::string& path, const OpenOptions& options, CWave& wave);
SaveResult saveVoc(FileSystem& files, const std::string& path, const CWave& wave, const SaveOptions& options);

}  // namespace plumetta
