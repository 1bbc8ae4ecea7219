// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/bit_depth.h"

#include <random>

namespace plumetta {
namespace {

// A uniform value on about [-1, +1] from fifteen random bits.
float uniformNoise(uint32_t fifteenBits) {
  float f = static_cast<float>(fifteenBits) * (1.0f / 32768.0f) * 10923.0f;
  f = f + f + f;
  return (f + f - 32766.0f) * (1.0f / 32767.0f);
}

float noisePeak(int targetBits, DitherType type) {
  const float half = targetBits == 8 ? 0x1p-8f : targetBits == 16 ? 0x1p-16f : 0.0f;
  return type == DitherType::fullStep ? 2 * half : half;
}

float clamped(float x) {
  x = x == x ? x : 0.0f;
  x = x > -1.0f ? x : -1.0f;
  return x < 1.0f ? x : 1.0f;
}

}  // namespace

void addDither(CWave& wave, int targetBits, DitherType type) {
  const float peak = noisePeak(targetBits, type);
  if (peak == 0.0f) return;
  std::mt19937 random(std::random_device{}());
  float* samples = wave.samples();
  for (size_t i = 0; i < wave.sampleCount(); ++i) {
    samples[i] += uniformNoise(static_cast<uint32_t>(random() >> 17)) * peak;
  }
}

void quantize(CWave& wave, int targetBits) {
  float* samples = wave.samples();
  const size_t count = wave.sampleCount();
  if (targetBits == 8) {
    for (size_t i = 0; i < count; ++i) {
      const auto q = static_cast<int32_t>(clamped(samples[i]) * 127.0 + 128.5);
      samples[i] = static_cast<float>((q - 128.0) / 127.0);
    }
  } else if (targetBits == 16) {
    for (size_t i = 0; i < count; ++i) {
      const auto q = static_cast<int32_t>(clamped(samples[i]) * 32767.0);
      samples[i] = static_cast<float>(q / 32767.0);
    }
  }
}

}  // namespace plumetta
