// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "dsp/strided_samples.h"

namespace plumetta {

// White: as much power in every hertz; pink: in every octave, down to 5 Hz; brown: 6 dB less with every
// octave above 5 Hz.
enum class NoiseColour { white, pink, brown };

// Overwrites all samples by noise between ± the amplitude: white noise evenly spread, the others with an RMS
// of a fifth of it. The same seed gives the same noise. False when it was asked to stop.
bool fillNoise(StridedSamples samples, NoiseColour colour, double sampleRate, double amplitude,
               uint32_t seed);

}  // namespace plumetta
