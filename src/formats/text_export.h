// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

// Writes the samples as text: a line a frame, each channel's sample with six decimals and a tab behind it.
SaveResult exportWaveAsText(FileSystem& files, const std::string& path, const CWave& wave, SyncToDisk sync);

// Writes a text as a text file of this system: each "\n" becomes its line end; "\r\n" stays as it is.
SaveResult writeTextFile(FileSystem& files, const std::string& path, const std::string& text);

}  // namespace plumetta
