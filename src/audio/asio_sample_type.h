// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace plumetta {

enum AsioSampleType : int32_t {
  kAsioInt16MSB = 0,
  kAsioInt24MSB = 1,
  kAsioInt32MSB = 2,
  kAsioFloat32MSB = 3,
  kAsioFloat64MSB = 4,
  kAsioInt32MSB16 = 8,
  kAsioInt32MSB18 = 9,
  kAsioInt32MSB20 = 10,
  kAsioInt32MSB24 = 11,
  kAsioInt16LSB = 16,
  kAsioInt24LSB = 17,
  kAsioInt32LSB = 18,
  kAsioFloat32LSB = 19,
  kAsioFloat64LSB = 20,
  kAsioInt32LSB16 = 24,
  kAsioInt32LSB18 = 25,
  kAsioInt32LSB20 = 26,
  kAsioInt32LSB24 = 27,
};

// "ASIOSTInt16LSB" for 16; "unknown" for a code without a name.
const char* asioSampleTypeName(int32_t type);

// Writes `frames` samples of the type to `buffer`, the first of them `offset` frames into it. `samples` null
// is silence; values are limited to ±kOutputCeiling, and what is no number is silence. Only the little-endian
// integers of 16, 24 and 32 bits and floats sound: the types without an audible form are silent or left as
// they were. Audio thread; never allocates, never waits.
void writeAsioSamples(int32_t type, const float* samples, int offset, int frames, void* buffer) noexcept;

}  // namespace plumetta
