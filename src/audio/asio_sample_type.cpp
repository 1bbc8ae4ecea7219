// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/asio_sample_type.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "audio/playback_controls.h"

namespace plumetta {
namespace {

static_assert(std::endian::native == std::endian::little, "samples are stored as they stand in memory");

constexpr double kHalf16 = 0.5 * 65536.0;            // a full scale of ±0.5 of 16 bits
constexpr double kHalf32 = 0.5 * 65536.0 * 65536.0;  // of 32 bits

double limited(float value) noexcept {
  if (value >= kOutputCeiling) return kOutputCeiling;
  if (value <= -kOutputCeiling) return -kOutputCeiling;
  return value == value ? value : 0.0;
}

// Halves go to the even neighbour.
int16_t toInt16(double value) noexcept { return static_cast<int16_t>(std::nearbyint(value * kHalf16)); }
int32_t toInt32(double value) noexcept { return static_cast<int32_t>(std::nearbyint(value * kHalf32)); }
float toFloat32(double value) noexcept { return static_cast<float>(value); }
double toFloat64(double value) noexcept { return value; }

struct Int24 {
  uint8_t bytes[3];
};
Int24 toInt24(double value) noexcept {
  const auto whole = static_cast<uint32_t>(static_cast<int32_t>(value * kHalf32));
  return {static_cast<uint8_t>(whole >> 8), static_cast<uint8_t>(whole >> 16),
          static_cast<uint8_t>(whole >> 24)};
}

// Memory of a driver need not be aligned.
template <auto convert>
void writeAll(const float* samples, int frames, uint8_t* out) noexcept {
  for (int i = 0; i < frames; ++i) {
    const auto stored = convert(limited(samples[i]));
    std::memcpy(out + static_cast<size_t>(i) * sizeof stored, &stored, sizeof stored);
  }
}

using Writer = void (*)(const float* samples, int frames, uint8_t* out) noexcept;

struct SampleType {
  int32_t code;
  const char* name;
  size_t bytes;   // a frame; 0 where nothing is written
  Writer writer;  // null where only silence is written
};

constexpr SampleType kTypes[] = {
    {kAsioInt16MSB, "ASIOSTInt16MSB", 2, nullptr},
    {kAsioInt24MSB, "ASIOSTInt24MSB", 3, nullptr},
    {kAsioInt32MSB, "ASIOSTInt32MSB", 4, nullptr},
    {kAsioFloat32MSB, "ASIOSTFloat32MSB", 4, nullptr},
    {kAsioFloat64MSB, "ASIOSTFloat64MSB", 8, nullptr},
    {kAsioInt32MSB16, "ASIOSTInt32MSB16", 0, nullptr},
    {kAsioInt32MSB18, "ASIOSTInt32MSB18", 0, nullptr},
    {kAsioInt32MSB20, "ASIOSTInt32MSB20", 0, nullptr},
    {kAsioInt32MSB24, "ASIOSTInt32MSB24", 4, nullptr},
    {kAsioInt16LSB, "ASIOSTInt16LSB", 2, writeAll<toInt16>},
    {kAsioInt24LSB, "ASIOSTInt24LSB", 3, writeAll<toInt24>},
    {kAsioInt32LSB, "ASIOSTInt32LSB", 4, writeAll<toInt32>},
    {kAsioFloat32LSB, "ASIOSTFloat32LSB", 4, writeAll<toFloat32>},
    {kAsioFloat64LSB, "ASIOSTFloat64LSB", 8, writeAll<toFloat64>},
    {kAsioInt32LSB16, "ASIOSTInt32LSB16", 0, nullptr},
    {kAsioInt32LSB18, "ASIOSTInt32LSB18", 0, nullptr},
    {kAsioInt32LSB20, "ASIOSTInt32LSB20", 0, nullptr},
    {kAsioInt32LSB24, "ASIOSTInt32LSB24", 4, nullptr},
};

const SampleType* findType(int32_t code) noexcept {
  const auto* found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                   [&](const SampleType& type) { return type.code == code; });
  return found != std::end(kTypes) ? found : nullptr;
}

}  // namespace

const char* asioSampleTypeName(int32_t type) {
  const SampleType* found = findType(type);
  return found != nullptr ? found->name : "unknown";
}

void writeAsioSamples(int32_t type, const float* samples, int offset, int frames, void* buffer) noexcept {
  const SampleType* found = findType(type);
  if (found == nullptr || found->bytes == 0) return;
  uint8_t* out = static_cast<uint8_t*>(buffer) + static_cast<size_t>(offset) * found->bytes;
  if (samples == nullptr || found->writer == nullptr) {
    std::memset(out, 0, static_cast<size_t>(frames) * found->bytes);
  } else {
    found->writer(samples, frames, out);
  }
}

}  // namespace plumetta
