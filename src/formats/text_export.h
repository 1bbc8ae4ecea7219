// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

// Writes the samples as text: a line a frame, each channel's sample with six decimals and a tab behind it.
SaveResult exportWaveAsText(FileSystem& files, const std::string& path, const CWave& wave, SyncToDisk sync);

}  // namespace plumetta
