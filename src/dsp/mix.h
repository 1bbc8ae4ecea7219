// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"

namespace plumetta {

// Whether `mixBuffer` would take this source, memory apart.
bool canMix(const CWave& wave, const CWave& source, int32_t position);

// Adds the source, times `gain`, to the buffer from `position` on (brought into the file); the buffer grows
// to take its end. The source's markers come along, and its loops where the buffer has none. Nothing is
// clipped. False for another channel count or without memory; the buffer is then as it was.
bool mixBuffer(CWave& wave, const CWave& source, int32_t position, float gain);

// Appends silent frames where the buffer has fewer than this; the envelope's end follows. False, with the
// buffer as it was, without memory.
bool lengthenTo(CWave& wave, int32_t frames);

}  // namespace plumetta
