// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/wav_encoding.h"

#include "core/wave.h"

namespace plumetta {
namespace {

struct Row {
  int bits;
  uint16_t tag;
  Encoding encoding;
};

constexpr Row kRows[] = {
    {4, kFormatAdpcm, Encoding::adpcm4},   {8, kFormatPcm, Encoding::pcm8},
    {8, kFormatALaw, Encoding::aLaw},      {8, kFormatMuLaw, Encoding::muLaw},
    {16, kFormatPcm, Encoding::pcm16},     {24, kFormatPcm, Encoding::pcm24},
    {32, kFormatPcm, Encoding::pcm32},     {32, kFormatFloat, Encoding::float32},
    {64, kFormatFloat, Encoding::float64},
};

}  // namespace

std::optional<SampleFormat> wavEncoding(int bits, uint16_t formatTag) {
  for (const Row& row : kRows) {
    if (row.bits != bits || row.tag != formatTag) continue;
    const bool isUnsigned = row.encoding == Encoding::pcm8;
    return SampleFormat{row.encoding, ByteOrder::little,
                        isUnsigned ? SignType::isUnsigned : SignType::isSigned};
  }
  return std::nullopt;
}

uint16_t storedFormatTag(int bits, uint16_t formatTag) {
  if (bits == 64) return kFormatFloat;
  return wavEncoding(bits, formatTag) ? formatTag : static_cast<uint16_t>(kFormatPcm);
}

}  // namespace plumetta
