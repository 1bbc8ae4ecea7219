// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/wave.h"
#include "dsp/frame_range.h"

namespace plumetta {

// A frame is silent when the magnitude of every channel's sample, active or not, lies below the level (dB of
// full scale). What is not a number counts as sound.

// The stretches of sound in a range that lies in the buffer: ascending, each from a frame with sound to one
// with sound, and parted from the next by at least `gapFrames` (1 at least) silent frames.
std::vector<FrameRange> findSound(const CWave& wave, FrameRange range, double levelDb, int64_t gapFrames);

// What lies in the range before, between and behind such stretches, where it has at least `gapFrames` frames.
std::vector<FrameRange> silenceAround(const std::vector<FrameRange>& sound, FrameRange range,
                                      int64_t gapFrames);

// The silence at both ends of the buffer; nothing when there is no sound in it.
std::optional<std::vector<FrameRange>> silentEnds(const CWave& wave, double levelDb);

}  // namespace plumetta
