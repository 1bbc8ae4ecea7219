// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "core/wave.h"
#include "dsp/interpolation_kernels.h"

namespace plumetta {

// Whole-file changes of the sample rate and of the pitch. The new samples are made beside the old ones, which
// stay as they are until `adopt`; so these may be played, and nothing is lost when the work is cancelled.

// Samples at another rate, and the rate.
struct ResampledBlock {
  BlockMemory samples;
  int32_t frames = 0;
  double rate = 0.0;
};

struct ResampleSettings {
  double rate = 0.0;        // target, Hz
  bool interpolate = true;  // else the sample at or before each position, whatever the kernel
  int kernel = 0;           // an InterpolationKernel
};

// How many frames there are at the target rate: the quotient, truncated, but never none of some; above
// kMaxFrames where no buffer could hold them.
int64_t resampledFrames(int32_t frames, double rate, double targetRate);

// Frames × channels interleaved samples at `rate`, at another rate. Kernel bandLimited with interpolation is
// the windowed sinc of 200 taps, for lower rates alone; all others are polynomials. Nothing for a rate not
// above 0, an unknown kernel, no samples, no memory, or when `progress` has stopped it.
std::optional<ResampledBlock> resampled(const float* samples, int32_t frames, int channels, double rate,
                                        const ResampleSettings& settings, const WaveProgress& progress);

// Makes the samples those of the buffer: its rate becomes theirs, rounded, and loops, markers and envelope
// follow. The old samples are in `block` afterwards. Under the audio lock where the buffer may be playing.
void adopt(CWave& wave, ResampledBlock& block);

// Both in one. False, with the buffer unchanged, where there is no result. At the rate it already has,
// nothing happens.
bool resample(CWave& wave, const ResampleSettings& settings);

// The low-pass that keeps the band above the target's half out of a resampling: cut off at 98 % of it,
// `quality` + 1 taps, in place. False when it was stopped half-way; too few frames are left unfiltered.
bool antiAlias(float* samples, int32_t frames, int channels, double rate, double targetRate, int quality,
               const WaveProgress& progress);

// The rate to resample to, so that at the old rate the sound is this much higher.
double rateOfPitch(double rate, int64_t semitones, int64_t cents);

}  // namespace plumetta
