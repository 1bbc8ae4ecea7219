// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/sample_input.h"

#include <cstdint>
#include <cstring>

namespace plumetta {
namespace {

constexpr float kFrom16Bits = 3.0517578125e-5f;        // 1 / 2^15
constexpr float kFrom32Bits = 4.656612873077393e-10f;  // 1 / 2^31

float from8(uint8_t value) { return (static_cast<float>(value) - 127.5f) / 127.5f; }

float from16(const uint8_t* bytes) {
  int16_t value = 0;
  std::memcpy(&value, bytes, sizeof value);
  return static_cast<float>(value) * kFrom16Bits;
}

// In the upper three bytes of 32 bits, so that the sign comes by itself.
float from24(const uint8_t* bytes) {
  const uint32_t bits = uint32_t{bytes[2]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[0]} << 8;
  return static_cast<float>(static_cast<int32_t>(bits)) * kFrom32Bits;
}

}  // namespace

void convertCaptured(const void* captured, size_t count, int bitDepth, float* floats) noexcept {
  const auto* bytes = static_cast<const uint8_t*>(captured);
  switch (bitDepth) {
    case 8:
      for (size_t i = 0; i < count; ++i) floats[i] = from8(bytes[i]);
      break;
    case 16:
      for (size_t i = 0; i < count; ++i) floats[i] = from16(bytes + 2 * i);
      break;
    case 24:
      for (size_t i = 0; i < count; ++i) floats[i] = from24(bytes + 3 * i);
      break;
    default:
      break;
  }
}

}  // namespace plumetta
