// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/strided_samples.h"

namespace plumetta {

// Waves with corners, ±1 but for the ringing of a jump, which a lowpass below half the sample rate rounds
// off: what aliases lies 120 dB below the fundamental, and partials up to 0.45 of the sample rate
// keep their level. Each begins at the start of its cycle: squares and pulses with their rise, the others
// rising through 0.
enum class CorneredWave { square, triangle, sawtooth, pulse };

// Overwrites all samples. `cyclesPerFrame` lies above 0 and below 0.5. False when it was asked to stop.
bool fillCorneredWave(StridedSamples samples, CorneredWave wave, double cyclesPerFrame, double amplitude);

}  // namespace plumetta
