// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"

namespace plumetta {

enum class DitherType { halfStep = 0, fullStep = 1 };

// Adds uniform noise with a peak of half a step or one step of the target depth, a step being 2^-(bits - 1),
// to every sample of every channel; nothing for depths other than 8 and 16. Different at every call.
void addDither(CWave& wave, int targetBits, DitherType type);

// Lets every sample take only the values that 8 or 16 bits can hold; other depths change nothing.
void quantize(CWave& wave, int targetBits);

}  // namespace plumetta
