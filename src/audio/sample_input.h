// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace plumetta {

// `count` captured samples as floats of ±1.0. 8 bits: unsigned, (x − 127.5) / 127.5. 16 bits: signed, over
// 2^15. 24 bits: signed, three little-endian bytes, over 2^23. Any other depth leaves the floats as they
// were. Audio thread; never allocates, never waits.
void convertCaptured(const void* captured, size_t count, int bitDepth, float* floats) noexcept;

}  // namespace plumetta
