// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/bit_depth.h"

#include <random>

#include "dsp/sample_loops.h"

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

// Of every channel, active or not.
template <class Change>
void forEverySample(CWave& wave, Change change) {
  if (wave.frames() == 0) return;
  const auto channels = static_cast<size_t>(wave.channels());
  const auto changePiece = [&](float* samples, size_t frames) {
    for (size_t i = 0; i < frames * channels; ++i) samples[i] = change(samples[i]);
  };
  // Random numbers and divisions in double precision take up to 20 ns a sample.
  constexpr size_t kSamplesPerTurn = 16384;
  forPieces(wave, {0, wave.frames() - 1}, changePiece, kSamplesPerTurn);
}

}  // namespace

void addDither(CWave& wave, int targetBits, DitherType type) {
  const float peak = noisePeak(targetBits, type);
  if (peak == 0.0f) return;
  std::mt19937 random(std::random_device{}());
  forEverySample(wave,
                 [&](float x) { return x + uniformNoise(static_cast<uint32_t>(random() >> 17)) * peak; });
}

void quantize(CWave& wave, int targetBits) {
  if (targetBits == 8) {
    forEverySample(wave, [](float x) {
      return static_cast<float>((static_cast<int32_t>(clamped(x) * 127.0 + 128.5) - 128.0) / 127.0);
    });
  } else if (targetBits == 16) {
    forEverySample(wave, [](float x) {
      return static_cast<float>(static_cast<int32_t>(clamped(x) * 32767.0) / 32767.0);
    });
  }
}

}  // namespace plumetta
