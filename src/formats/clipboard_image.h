// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>

#include "core/wave.h"
#include "formats/format.h"

namespace plumetta {

// Audio as it lies on the system clipboard: a RIFF WAVE image with a header of 48 bytes, whose format chunk
// is declared 20 bytes long.

// Bytes of the image of the first `frames` frames; 0 when no clipboard could take that many.
size_t clipboardImageBytes(const CWave& wave, int32_t frames);
// Writes the image, `clipboardImageBytes` of them. Samples are truncated toward zero and held within full
// scale.
void writeClipboardImage(const CWave& wave, int32_t frames, uint8_t* image);

// Fills `wave` from any RIFF WAVE image, ours or another program's, as when a WAV file is loaded.
LoadResult readClipboardImage(std::string_view image, CWave& wave);

}  // namespace plumetta
