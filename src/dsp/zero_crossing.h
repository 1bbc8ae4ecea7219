// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "core/wave.h"

namespace plumetta {

// The frame nearest to `frame` at which the sum of the active channels crosses zero, of the two frames around
// a crossing the one that lies nearer to zero. `frame` itself when there is none within `reach` frames.
int32_t nearestZeroCrossing(const CWave& wave, int32_t frame, int32_t reach);

}  // namespace plumetta
