// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "core/wave_progress.h"

namespace plumetta {

// What the four bytes at the head of an MPEG audio frame say. The sync bits are not looked at: how strictly
// they are taken is the caller's business. Reserved values come out as a rate of 0.
struct Mp3FrameHeader {
  static constexpr size_t kBytes = 4;

  int version = 0;     // 1, 2, or 25 for MPEG-2.5
  int layer = 0;       // 1 to 3
  int bitRate = 0;     // bits a second; 0 also for a free one
  int sampleRate = 0;  // Hz
  bool padded = false;
  bool mono = false;

  explicit Mp3FrameHeader(const uint8_t* bytes);
  // Audio frames that it decodes to.
  int frames() const;
  // From this header to the next; 0 when that can't be told.
  size_t bytes() const;
  bool sameStream(const Mp3FrameHeader& other) const {
    return version == other.version && layer == other.layer && sampleRate == other.sampleRate;
  }
};

// Whether two bytes are the eleven sync bits and more.
inline bool isMp3Sync(const uint8_t* bytes) { return bytes[0] == 0xFF && (bytes[1] & 0xE0) == 0xE0; }

// Bytes of the ID3 version 2 tag that the data begins with, its header included; 0 when there is none. May be
// more than the data has.
size_t id3TagBytes(std::span<const uint8_t> data);

// What walking over the frame headers tells, without decoding. An estimate: damage and foreign data between
// the frames lead it astray.
struct Mp3Scan {
  size_t firstFrame = 0;  // byte offset
  int64_t frames = 0;     // audio frames in all
  bool guessed = false;   // no header was found: `frames` goes by the size of the data
  uint32_t sampleRate = 44100;
  int channels = 1;
};

// Nothing when the progress asked to stop.
std::optional<Mp3Scan> scanMp3Frames(std::span<const uint8_t> data, const WaveProgress& progress);

}  // namespace plumetta
