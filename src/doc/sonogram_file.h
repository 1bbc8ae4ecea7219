// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "dsp/sonogram.h"
#include "formats/format.h"

namespace plumetta {

struct SonogramFileSettings {
  SpectrumSettings spectrum{2048};
  int hop = 1024;  // frames from one spectrum to the next
};

// The channels that a document shows spectra of: the active ones.
std::vector<int> activeChannels(const CWave& wave);

// Writes the spectra of a range of a buffer as comma-separated text. The first line names the columns:
// "frame", "channel" and the frequency of each line in Hz. Then a line a spectrum, channel by channel: the
// frame about which its block stands (the range's first, then every `hop`), the channel's index, and the
// amplitude at each frequency with all the digits that a 32-bit float needs. Stopped by the buffer's
// progress.
SaveResult saveSonogram(FileSystem& files, const std::string& path, const CWave& wave, FrameRange range,
                        const SonogramFileSettings& settings);

}  // namespace plumetta
