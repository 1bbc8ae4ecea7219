// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"

namespace plumetta {

enum class Placement { insert = 0, mix = 1, replace = 2 };

// Puts a signal into the active channels from `position` (0 to the frame count) on: before what stands there,
// with silence on the other channels, added to it, or over it. A buffer that ends earlier is lengthened. The
// signal has one channel for all, or one for each active channel; its annotations stay behind. Nothing is
// clipped. False, with the buffer as it was, beyond the longest buffer or without memory.
bool placeSignal(CWave& wave, const CWave& signal, int32_t position, Placement how);

}  // namespace plumetta
