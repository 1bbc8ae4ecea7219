// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"

namespace plumetta {

// Whole channels come, go and change places; the envelope's channels with them. False, with the buffer as it
// was, for an index that isn't there, more than 16 channels, or no memory.

// A silent channel before the one at `index`, or behind the last.
bool insertChannel(CWave& wave, int index);
// A copy of a channel behind its original.
bool cloneChannel(CWave& wave, int index);
// Exchanges a channel with the next one, or with channel 0 when it is the last.
bool swapWithNextChannel(CWave& wave, int index);

}  // namespace plumetta
