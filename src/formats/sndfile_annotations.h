// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sndfile.h>

#include <cstdint>

#include "core/wave.h"

namespace plumetta {

// libsndfile's header has room for this many markers.
inline constexpr int kMostChunkMarkers = 2000;
inline constexpr size_t kLongestAiffLabel = 31;

// Markers ("MARK") and the sustain and release loop ("INST") of an AIFF file. What is damaged is left out.
void readAiffAnnotations(SNDFILE& sound, uint64_t fileBytes, CWave& wave);
void writeAiffAnnotations(SNDFILE& sound, const CWave& wave);

// Positions of a CAF file's "mark" chunk.
void readCafMarkers(SNDFILE& sound, uint64_t fileBytes, CWave& wave);
void writeCafMarkers(SNDFILE& sound, const CWave& wave);

}  // namespace plumetta
