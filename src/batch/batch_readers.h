// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "formats/format.h"

namespace plumetta {

// The formats to try on a file, in this order: compressed ones whose extension is part of what stands behind
// the name's last dot (".mp3x" is an MP3 name), then those that know its content.
std::vector<const Format*> batchReaders(FileSystem& files, const std::string& path);

// Fills the buffer by the first of these that can read the file.
LoadStatus loadForBatch(FileSystem& files, const std::string& path, CWave& wave);

}  // namespace plumetta
