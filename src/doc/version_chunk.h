// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"

namespace plumetta {

// The version that every written file names in its "ETTA" chunk.
inline constexpr const char* kVersion = "1.5.0.1";

// Gives a buffer that chunk: the version, filled with zeros to 32 bytes.
void addVersionChunk(CWave& wave);

}  // namespace plumetta
