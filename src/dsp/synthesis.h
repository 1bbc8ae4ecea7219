// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"

namespace plumetta {

// Test signals by their type codes.
enum class SynthesisType { sweepLinear = 10, sweepExponential = 11, impulseTrain = 14 };

// Fills the active channels of the whole buffer: impulses of the amplitude once a second from the first frame
// on, or a sine that sweeps from 20 Hz to half the sample rate, at most 20 kHz, over the length of the
// buffer.
void synthesize(CWave& wave, SynthesisType type, float amplitude);

}  // namespace plumetta
