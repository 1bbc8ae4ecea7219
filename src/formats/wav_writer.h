// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

inline constexpr const char* kTooLongForWav =
    "The audio is too long for a WAV file, which holds 4 GiB at most.";
// False for samples that alone are more than that.
bool fitsIntoWav(int64_t frames, int channels, int bitsPerSample);

// Writes the whole buffer as RIFF WAVE with its loops, markers, envelope and extra chunks. With an odd number
// of channels and frames at 8 or 24 bits the file gets one silent frame more, to keep the data chunk even;
// the result says so, and the caller gives it to the buffer as well (`CWave::appendEvenFrame`).
SaveResult saveWav(FileSystem& files, const std::string& path, const CWave& wave, SyncToDisk sync);

// The same as RF64, whose sizes have 64 bits.
SaveResult saveRf64(FileSystem& files, const std::string& path, const CWave& wave, SyncToDisk sync);

// Writes the frames between the two, both included, with the markers and loops that lie inside.
SaveResult saveWavRange(FileSystem& files, const std::string& path, const CWave& wave, int32_t from,
                        int32_t to, SyncToDisk sync);

// Writes one WAV a region, named PREFIX_M000.wav and so on; neighbours share their boundary frame.
SaveResult splitAtMarkers(FileSystem& files, const std::string& prefix, const CWave& wave, SyncToDisk sync);

}  // namespace plumetta
