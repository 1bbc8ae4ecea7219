// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "core/wave.h"

namespace plumetta {

// A region is the stretch from one marker to the next, or to the last frame; it is never stored.

// The stretches between markers, the file's ends included: ascending positions, each once.
std::vector<int32_t> regionBoundaries(const CWave& wave);

// Exchanges the places of the regions that begin at the markers `a` and `b`, in place; markers and loops
// inside go along. Nothing happens when the two are the same, when either has no frame behind it, or when not
// every channel is active.
void swapRegions(CWave& wave, int32_t a, int32_t b);

// Exchanges two regions chosen at random, `count` times. `random` gives any non-negative number.
void scrambleRegions(CWave& wave, int count, const std::function<uint32_t()>& random);

}  // namespace plumetta
