// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

#include "core/wave_progress.h"
#include "formats/input_stream.h"
#include "formats/output_stream.h"

namespace plumetta {

// How a file stores one sample.
enum class Encoding { adpcm4, pcm8, muLaw, aLaw, pcm16, pcm24, pcm32, float32, float64 };
enum class ByteOrder { little = 2, big = 3 };
// Of 8-bit and 16-bit PCM; the other encodings are always signed.
enum class SignType { isSigned = 0, isUnsigned = 1 };

struct SampleFormat {
  Encoding encoding = Encoding::pcm16;
  ByteOrder byteOrder = ByteOrder::little;
  SignType signType = SignType::isSigned;
};

// Bytes of one stored sample; 0 for ADPCM, of which one byte holds two.
int bytesPerSample(Encoding encoding);

// Samples in the machine's own byte order to floats and back, `count` at a time; the scales, rounding and
// clamping of every file. Null for ADPCM, which keeps a state between blocks.
using BlockDecoder = void (*)(const uint8_t* raw, float* floats, size_t count);
using BlockEncoder = void (*)(const float* floats, uint8_t* raw, size_t count);
BlockDecoder blockDecoder(Encoding encoding, SignType signType);
BlockEncoder blockEncoder(Encoding encoding, SignType signType);

enum class CodecResult { done, shortRead, writeFailed, cancelled };

// Reads frames × channels samples from the stream into interleaved floats, in blocks of 512 frames, reporting
// after each. A short read leaves the rest of the floats untouched; `framesRead` tells how many are sound.
CodecResult decodeSamples(InputStream& in, const SampleFormat& format, float* floats, int64_t frames,
                          int channels, const WaveProgress& progress, int64_t& framesRead);

// Writes interleaved floats. Integers are rounded to the nearest value of their own width, values beyond full
// scale are clamped to it and what is not a number becomes 0; floats are written as they are. ADPCM can't be
// written.
CodecResult encodeSamples(OutputStream& out, const SampleFormat& format, const float* floats, int64_t frames,
                          int channels, const WaveProgress& progress);

// The whole width, 8, 16, 24 or 32 bits, that a sample of `bits` (at most 32) stands in.
int wholeWidth(int bits);

// Channels of signed integers of `bits` each, interleaved to floats: a narrow sample takes the upper bits of
// its whole width, by whose scale it goes.
void interleavePcm(const int32_t* const* channels, int channelCount, int bits, float* floats, size_t frames);

// The same conversion in memory: samples at ±1.0 to 16-bit integers.
void toPcm16(const float* floats, int16_t* integers, size_t count);

}  // namespace plumetta
