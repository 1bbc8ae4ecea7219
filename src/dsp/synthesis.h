// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "core/wave.h"

namespace plumetta {

// Test signals by their type codes.
enum class SynthesisType {
  sine = 0,
  square = 1,
  triangle = 2,
  sawtooth = 3,
  pulse = 4,  // high for a quarter of the cycle
  whiteNoise = 5,
  pinkNoise = 6,
  brownNoise = 7,
  silence = 8,
  twoTone = 9,  // the frequency and 6/5 of it, half the amplitude each: no sum or difference hides another
  sweepLinear = 10,
  sweepExponential = 11,
  dtmf = 12,  // the digits of the "frequency" are dialled; several are followed by a pause each
  impulseTrain = 14,
};

bool isNoise(SynthesisType type);
// Whether every tone of it lies from 0.001 Hz to below half the rate; types without a frequency take any.
bool canSynthesize(SynthesisType type, double hz, double sampleRate);

// Fills the active channels of the whole buffer, within ± the amplitude: impulses `hz` times a second from
// the first frame on, a sine that sweeps from 20 Hz to half the sample rate, at most 20 kHz, over the length
// of the buffer, or what else `canSynthesize` accepts. Waves with jumps keep below it by pi/4, pulses
// by 0.7, so that the ringing of their edges has room. Noise is another one on each channel. False when
// it was asked to stop.
bool synthesize(CWave& wave, SynthesisType type, float amplitude, double hz = 1.0, uint32_t seed = 0);

}  // namespace plumetta
