// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"

namespace plumetta {

// Replaces every sample of the active channels by the mean of itself and the `length` - 1 that follow;
// missing ones at the end count as 0. Whole buffer, in place; reports progress and gives turns. False for a
// length below 1, an empty buffer or one of 16 channels, with nothing changed, or when it was stopped
// half-way.
bool movingAverage(CWave& wave, int32_t length);

}  // namespace plumetta
