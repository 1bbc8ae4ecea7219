// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/g711.h"

#include <algorithm>
#include <bit>

namespace plumetta {
namespace {

constexpr int kMuLawBias = 132;
constexpr int kMuLawClip = 32767 - kMuLawBias;

}  // namespace

int16_t expandMuLaw(uint8_t code) {
  const int bits = ~code & 0xFF;
  const int segment = bits >> 4 & 7;
  const int magnitude = ((((bits & 0x0F) << 3) + kMuLawBias) << segment) - kMuLawBias;
  return static_cast<int16_t>(bits & 0x80 ? -magnitude : magnitude);
}

uint8_t compressMuLaw(int16_t linear) {
  const int sign = linear < 0 ? 0x80 : 0;
  const int magnitude = std::min(linear < 0 ? -linear : linear, kMuLawClip) + kMuLawBias;
  const int segment = std::bit_width(static_cast<unsigned>(magnitude)) - 8;
  const int mantissa = magnitude >> (segment + 3) & 0x0F;
  return static_cast<uint8_t>(~(sign | segment << 4 | mantissa));
}

int16_t expandALaw(uint8_t code) {
  const int bits = code ^ 0x55;
  const int segment = bits >> 4 & 7;
  const int mantissa = (bits & 0x0F) << 4;
  const int magnitude = segment == 0 ? mantissa + 8 : (mantissa + 0x108) << (segment - 1);
  return static_cast<int16_t>(bits & 0x80 ? magnitude : -magnitude);
}

uint8_t compressALaw(int16_t linear) {
  const int sign = linear < 0 ? 0 : 0x80;
  const int magnitude = linear < 0 ? -static_cast<int>(linear) - 1 : linear;
  const int segment = std::max(0, static_cast<int>(std::bit_width(static_cast<unsigned>(magnitude))) - 8);
  const int mantissa = segment == 0 ? magnitude >> 4 & 0x0F : magnitude >> (segment + 3) & 0x0F;
  return static_cast<uint8_t>((sign | segment << 4 | mantissa) ^ 0x55);
}

}  // namespace plumetta
