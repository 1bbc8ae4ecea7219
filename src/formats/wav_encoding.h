// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

#include "formats/sample_codec.h"

namespace plumetta {

// How the samples of a WAV file with these header values are stored; nothing for a pair that nobody writes.
std::optional<SampleFormat> wavEncoding(int bits, uint16_t formatTag);

// The tag that names what is really written for a buffer of these values, so that a file never claims floats
// and holds integers: 8 bits know PCM, A-law and µ-law, 16 and 24 bits only PCM, 64 bits only floats.
uint16_t storedFormatTag(int bits, uint16_t formatTag);

}  // namespace plumetta
