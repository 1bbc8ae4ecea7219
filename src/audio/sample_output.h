// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace plumetta {

// The memory that one sample takes while it is converted. For 24 bits that is a byte more than the device
// reads.
constexpr int sampleMemoryBytes(int bitDepth) { return bitDepth == 24 ? 4 : bitDepth / 8; }

// Interleaves the channels into `out`, which holds channelCount × frames samples of sampleMemoryBytes. Values
// are clamped to ±1 and cut towards zero; what is no number, and a channel that is null, is silence. 8 bits:
// x × 126 + 127, unsigned. 16 bits: x × 32766. 24 bits: x itself, so −1, 0 or 1, as a 32-bit word; no usable
// signal, and never chosen by the settings. Any other depth leaves the memory as it was. Audio thread; never
// allocates, never waits.
void convertSamples(const float* const* channels, int channelCount, int frames, int bitDepth,
                    void* out) noexcept;

}  // namespace plumetta
