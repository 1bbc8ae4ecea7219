// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/sample_codec.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

#include "core/wave.h"
#include "formats/dialogic_adpcm.h"
#include "formats/g711.h"

namespace plumetta {
namespace {

static_assert(std::endian::native == std::endian::little, "the codecs work on little-endian machines");

constexpr int64_t kBlockFrames = 512;
constexpr double kInt32Scale = 4.656612873077393e-10;  // 2^-31

template <class T>
T load(const uint8_t* raw, size_t i) {
  T value;
  std::memcpy(&value, raw + i * sizeof(T), sizeof(T));
  return value;
}

template <class T>
void store(uint8_t* raw, size_t i, T value) {
  std::memcpy(raw + i * sizeof(T), &value, sizeof(T));
}

// The scales of signed PCM; 24 bits come as the upper ones of 32.
float pcm8ToFloat(int32_t value) { return static_cast<float>(value) / 127.5f; }
float pcm16ToFloat(int32_t value) { return static_cast<float>(value) / 32767.0f; }
float pcm32ToFloat(int32_t value) { return static_cast<float>(value) * static_cast<float>(kInt32Scale); }

void decodePcm8Unsigned(const uint8_t* raw, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i) floats[i] = (raw[i] - 128.0f) / 127.0f;
}

void decodePcm8Signed(const uint8_t* raw, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i) floats[i] = pcm8ToFloat(static_cast<int8_t>(raw[i]));
}

void decodePcm16Signed(const uint8_t* raw, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i) floats[i] = pcm16ToFloat(load<int16_t>(raw, i));
}

void decodePcm16Unsigned(const uint8_t* raw, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i) floats[i] = (load<uint16_t>(raw, i) - 32768.0f) / 32767.0f;
}

void decodePcm24(const uint8_t* raw, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i, raw += 3) {
    const uint32_t bits = static_cast<uint32_t>(raw[0]) << 8 | static_cast<uint32_t>(raw[1]) << 16 |
                          static_cast<uint32_t>(raw[2]) << 24;
    floats[i] = pcm32ToFloat(static_cast<int32_t>(bits));
  }
}

void decodePcm32(const uint8_t* raw, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i) floats[i] = pcm32ToFloat(load<int32_t>(raw, i));
}

void decodeFloat32(const uint8_t* raw, float* floats, size_t count) {
  std::memcpy(floats, raw, count * sizeof(float));
}

void decodeFloat64(const uint8_t* raw, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i) floats[i] = static_cast<float>(load<double>(raw, i));
}

using ExpansionTable = std::array<float, 256>;

ExpansionTable expansionTable(int16_t (*expand)(uint8_t)) {
  ExpansionTable table;
  for (size_t code = 0; code < table.size(); ++code) {
    table[code] = static_cast<float>(expand(static_cast<uint8_t>(code)) / 32767.0);
  }
  return table;
}

void decodeMuLaw(const uint8_t* raw, float* floats, size_t count) {
  static const ExpansionTable table = expansionTable(expandMuLaw);
  for (size_t i = 0; i < count; ++i) floats[i] = table[raw[i]];
}

void decodeALaw(const uint8_t* raw, float* floats, size_t count) {
  static const ExpansionTable table = expansionTable(expandALaw);
  for (size_t i = 0; i < count; ++i) floats[i] = table[raw[i]];
}

// Full scale at most, and 0 for what is not a number (it fails both comparisons with itself).
float bounded(float x) {
  x = x == x ? x : 0.0f;
  x = x > -1.0f ? x : -1.0f;
  return x < 1.0f ? x : 1.0f;
}

// Adding this to a double below 2^51 in magnitude rounds it to an integer, which then stands in the low bits
// of its mantissa: nearest-even rounding that vectorises without a library call.
constexpr double kRoundingMagic = 6755399441055744.0;  // 1.5 × 2^52

int32_t nearestInteger(double x) {
  return static_cast<int32_t>(static_cast<uint32_t>(std::bit_cast<uint64_t>(x + kRoundingMagic)));
}

int16_t toLinear16(float x) { return static_cast<int16_t>(nearestInteger(bounded(x) * 32767.0)); }

void encodePcm8Unsigned(const float* floats, uint8_t* raw, size_t count) {
  for (size_t i = 0; i < count; ++i) raw[i] = static_cast<uint8_t>(bounded(floats[i]) * 127.0 + 128.5);
}

void encodePcm8Signed(const float* floats, uint8_t* raw, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    raw[i] = static_cast<uint8_t>(std::min(nearestInteger(bounded(floats[i]) * 127.5), 127));
  }
}

// Two doubles' worth of `toLinear16`, as 32-bit integers in the lower half.
__m128i linear16Pair(__m128 floats) {
  const __m128d scaled = _mm_mul_pd(_mm_cvtps_pd(floats), _mm_set1_pd(32767.0));
  return _mm_cvtpd_epi32(scaled);  // rounds to nearest, ties to even, as the plain twin does
}

__m128i linear16Four(const float* floats) {
  const __m128 x = _mm_loadu_ps(floats);
  const __m128 number = _mm_and_ps(x, _mm_cmpord_ps(x, x));
  const __m128 bound = _mm_min_ps(_mm_max_ps(number, _mm_set1_ps(-1.0f)), _mm_set1_ps(1.0f));
  return _mm_unpacklo_epi64(linear16Pair(bound), linear16Pair(_mm_movehl_ps(bound, bound)));
}

// Most files that are saved have this encoding, so it is written out for the vectors of every x86-64 machine.
void encodePcm16Signed(const float* floats, uint8_t* raw, size_t count) {
  size_t i = 0;
  for (; i + 8 <= count; i += 8) {
    const __m128i eight = _mm_packs_epi32(linear16Four(floats + i), linear16Four(floats + i + 4));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(raw + 2 * i), eight);
  }
  for (; i < count; ++i) store(raw, i, toLinear16(floats[i]));
}

void encodePcm16Unsigned(const float* floats, uint8_t* raw, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    store(raw, i, static_cast<uint16_t>(nearestInteger(bounded(floats[i]) * 32767.0) + 32768));
  }
}

void encodePcm24(const float* floats, uint8_t* raw, size_t count) {
  for (size_t i = 0; i < count; ++i, raw += 3) {
    const double scaled = bounded(floats[i]) * (2147483647.0 / 256.0);
    const int32_t value = std::min(nearestInteger(scaled), 0x7FFFFF);
    raw[0] = static_cast<uint8_t>(value);
    raw[1] = static_cast<uint8_t>(value >> 8);
    raw[2] = static_cast<uint8_t>(value >> 16);
  }
}

void encodePcm32(const float* floats, uint8_t* raw, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    store(raw, i, nearestInteger(bounded(floats[i]) * 2147483647.0));
  }
}

void encodeFloat32(const float* floats, uint8_t* raw, size_t count) {
  std::memcpy(raw, floats, count * sizeof(float));
}

void encodeFloat64(const float* floats, uint8_t* raw, size_t count) {
  for (size_t i = 0; i < count; ++i) store(raw, i, static_cast<double>(floats[i]));
}

void encodeMuLaw(const float* floats, uint8_t* raw, size_t count) {
  for (size_t i = 0; i < count; ++i) raw[i] = compressMuLaw(toLinear16(floats[i]));
}

void encodeALaw(const float* floats, uint8_t* raw, size_t count) {
  for (size_t i = 0; i < count; ++i) raw[i] = compressALaw(toLinear16(floats[i]));
}

struct Codec {
  BlockDecoder decode;
  BlockEncoder encode;
};

Codec codecFor(Encoding encoding, SignType signType) {
  const bool isUnsigned = signType == SignType::isUnsigned;
  switch (encoding) {
    case Encoding::adpcm4:
      return {nullptr, nullptr};  // keeps state between blocks; see decodeAdpcm
    case Encoding::pcm8:
      return isUnsigned ? Codec{decodePcm8Unsigned, encodePcm8Unsigned}
                        : Codec{decodePcm8Signed, encodePcm8Signed};
    case Encoding::muLaw:
      return {decodeMuLaw, encodeMuLaw};
    case Encoding::aLaw:
      return {decodeALaw, encodeALaw};
    case Encoding::pcm16:
      return isUnsigned ? Codec{decodePcm16Unsigned, encodePcm16Unsigned}
                        : Codec{decodePcm16Signed, encodePcm16Signed};
    case Encoding::pcm24:
      return {decodePcm24, encodePcm24};
    case Encoding::pcm32:
      return {decodePcm32, encodePcm32};
    case Encoding::float32:
      return {decodeFloat32, encodeFloat32};
    case Encoding::float64:
      return {decodeFloat64, encodeFloat64};
  }
  return {nullptr, nullptr};
}

template <float (*kToFloat)(int32_t)>
void interleave(const int32_t* const* channels, int channelCount, int shift, float* floats, size_t frames) {
  if (channelCount == 2) {  // apart, for the vectors
    const int32_t *left = channels[0], *right = channels[1];
    for (size_t f = 0; f < frames; ++f) {
      floats[2 * f] = kToFloat(left[f] << shift);
      floats[2 * f + 1] = kToFloat(right[f] << shift);
    }
    return;
  }
  const auto step = static_cast<size_t>(channelCount);
  for (size_t c = 0; c < step; ++c) {
    for (size_t f = 0; f < frames; ++f) floats[f * step + c] = kToFloat(channels[c][f] << shift);
  }
}

void swapByteOrder(uint8_t* raw, size_t count, size_t bytes) {
  for (size_t i = 0; i < count; ++i) std::reverse(raw + i * bytes, raw + (i + 1) * bytes);
}

float fraction(int64_t done, int64_t all) { return static_cast<float>(done) / static_cast<float>(all); }

// Two samples a byte, the high nibble first; the samples of a frame follow each other.
CodecResult decodeAdpcm(InputStream& in, float* floats, int64_t frames, int channels,
                        const WaveProgress& progress, int64_t& framesRead) {
  std::array<DialogicAdpcm, kMaxChannels> decoders;
  const int64_t samples = frames * channels;
  int64_t done = 0;
  for (; done < samples; done += 2) {
    uint8_t byte;
    if (in.read(&byte, 1) != 1) break;
    for (int64_t i = done; i < std::min(done + 2, samples); ++i) {
      const auto code = static_cast<uint8_t>(i == done ? byte >> 4 : byte & 0x0F);
      const int value = decoders[static_cast<size_t>(i % channels)].decode(code);
      floats[i] = static_cast<float>(value * 16 / 32767.0);  // 12 bits at the top of a 16-bit scale
    }
    if (done % (kBlockFrames * channels) == 0 && !progress.report(fraction(done, samples))) {
      return CodecResult::cancelled;
    }
  }
  framesRead = std::min(done, samples) / channels;
  return framesRead == frames ? CodecResult::done : CodecResult::shortRead;
}

}  // namespace

BlockDecoder blockDecoder(Encoding encoding, SignType signType) {
  return codecFor(encoding, signType).decode;
}

BlockEncoder blockEncoder(Encoding encoding, SignType signType) {
  return codecFor(encoding, signType).encode;
}

int bytesPerSample(Encoding encoding) {
  switch (encoding) {
    case Encoding::adpcm4:
      return 0;
    case Encoding::pcm8:
    case Encoding::muLaw:
    case Encoding::aLaw:
      return 1;
    case Encoding::pcm16:
      return 2;
    case Encoding::pcm24:
      return 3;
    case Encoding::pcm32:
    case Encoding::float32:
      return 4;
    case Encoding::float64:
      return 8;
  }
  return 0;
}

CodecResult decodeSamples(InputStream& in, const SampleFormat& format, float* floats, int64_t frames,
                          int channels, const WaveProgress& progress, int64_t& framesRead) {
  framesRead = 0;
  if (format.encoding == Encoding::adpcm4) {
    return decodeAdpcm(in, floats, frames, channels, progress, framesRead);
  }
  const auto width = static_cast<size_t>(bytesPerSample(format.encoding));
  const size_t frameBytes = width * static_cast<size_t>(channels);
  const BlockDecoder decode = blockDecoder(format.encoding, format.signType);
  std::vector<uint8_t> raw(frameBytes * static_cast<size_t>(kBlockFrames));
  while (framesRead < frames) {
    const int64_t wanted = std::min(kBlockFrames, frames - framesRead);
    const size_t bytes = in.read(raw.data(), frameBytes * static_cast<size_t>(wanted));
    const size_t samples = bytes / frameBytes * static_cast<size_t>(channels);
    if (format.byteOrder == ByteOrder::big) swapByteOrder(raw.data(), samples, width);
    decode(raw.data(), floats, samples);
    floats += samples;
    framesRead += static_cast<int64_t>(bytes / frameBytes);
    if (bytes != frameBytes * static_cast<size_t>(wanted)) return CodecResult::shortRead;
    if (!progress.report(fraction(framesRead, frames))) return CodecResult::cancelled;
  }
  return CodecResult::done;
}

CodecResult encodeSamples(OutputStream& out, const SampleFormat& format, const float* floats, int64_t frames,
                          int channels, const WaveProgress& progress) {
  const BlockEncoder encode = blockEncoder(format.encoding, format.signType);
  if (encode == nullptr) return CodecResult::writeFailed;
  const auto width = static_cast<size_t>(bytesPerSample(format.encoding));
  std::vector<uint8_t> raw(width * static_cast<size_t>(channels * kBlockFrames));
  for (int64_t done = 0; done < frames;) {
    const int64_t block = std::min(kBlockFrames, frames - done);
    const auto samples = static_cast<size_t>(block * channels);
    encode(floats, raw.data(), samples);
    if (format.byteOrder == ByteOrder::big) swapByteOrder(raw.data(), samples, width);
    out.write(raw.data(), samples * width);
    if (out.failed()) return CodecResult::writeFailed;
    floats += samples;
    done += block;
    if (!progress.report(fraction(done, frames))) return CodecResult::cancelled;
  }
  return CodecResult::done;
}

int wholeWidth(int bits) { return (bits + 7) / 8 * 8; }

void interleavePcm(const int32_t* const* channels, int channelCount, int bits, float* floats, size_t frames) {
  if (bits <= 8) return interleave<pcm8ToFloat>(channels, channelCount, 8 - bits, floats, frames);
  if (bits <= 16) return interleave<pcm16ToFloat>(channels, channelCount, 16 - bits, floats, frames);
  interleave<pcm32ToFloat>(channels, channelCount, 32 - bits, floats, frames);
}

void toPcm16(const float* floats, int16_t* integers, size_t count) {
  encodePcm16Signed(floats, reinterpret_cast<uint8_t*>(integers), count);
}

}  // namespace plumetta
