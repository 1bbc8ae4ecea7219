// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sndfile.h>

#include <array>
#include <cstdint>
#include <string>

#include "core/wave.h"
#include "formats/format.h"
#include "formats/sample_codec.h"

namespace plumetta {

// One way in which a container can store samples, with libsndfile's name for it.
struct StoredEncoding {
  Encoding encoding;
  SignType signType;
  int subtype;  // 0 ends a list
};
using StoredEncodings = std::array<StoredEncoding, 9>;

// What sets one container apart from the others that libsndfile reads and writes.
struct SndfileKind {
  const char* name;  // in messages: "AIFF holds at most 16 channels"
  int container;     // SF_FORMAT_AIFF
  int mostChannels;
  uint64_t mostBytes;  // of samples
  uint32_t mostRate;   // Hz
  StoredEncodings encodings;
  const char* textKind = "";  // what its text information is called
  // The bytes that a file of this kind has by its own header; 0 where the header doesn't tell.
  uint64_t (*claimedBytes)(const FileHead& head) = nullptr;
  // The bytes of sound by its own header, where the library takes a pad byte for one more; 0 where it doesn't
  // tell.
  uint64_t (*soundBytes)(const FileHead& head) = nullptr;
  // Where the container has markers and loops; `write` comes ahead of the samples.
  void (*readAnnotations)(SNDFILE& sound, uint64_t fileBytes, CWave& wave) = nullptr;
  void (*writeAnnotations)(SNDFILE& sound, const CWave& wave) = nullptr;
  int mostMarkers = 0;
  int mostLoops = 0;
  size_t longestLabel = 0;  // bytes of a marker's label that are kept
  // A kind's own reason to refuse a buffer; empty when there is none.
  std::string (*refusal)(const CWave& wave) = nullptr;
  // Stereo is stored as all of the left channel, then all of the right one.
  bool planar = false;
  // One silent frame more where the buffer `needsEvenFrame`: the library would count the pad byte for sound.
  bool keepsSizeEven = false;
  // The library refuses a truncated file that it is told the true length of.
  bool refusesTruncated = false;
  // The encoding is chosen by bit rate; see SaveOptions.
  bool hasBitRate = false;
};

// kWav serves for reading alone, of what the editor's own reader leaves to the library.
extern const SndfileKind kWav, kAiff, kAmigaIff, kAu, kVoc, kCaf, kW64, kFlac, kOpus, kVorbis;

// How a buffer is stored in such a file: as it is, or the widest way below that there is.
StoredEncoding storedEncoding(const SndfileKind& kind, const CWave& wave);
// Why a buffer can't be stored at all, in one sentence; empty when it can.
std::string refusalOf(const SndfileKind& kind, const CWave& wave);
// What a file would not hold of the buffer, as Format::losses tells it.
std::vector<std::string> lossesOf(const SndfileKind& kind, const CWave& wave);

}  // namespace plumetta
