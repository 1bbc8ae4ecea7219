// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "platform/shared_library.h"

namespace plumetta {

// The part of the C interface of the WavPack library (4.x and 5.x) that reading a file needs.

struct WavpackContext;  // an open file; the library's own

inline constexpr uint32_t kWavpackVersion5 = 0x50000;
inline constexpr int kWavpackErrorBytes = 80;
inline constexpr uint32_t kWavpackUnknownLength = 0xFFFFFFFF;

enum WavpackOpenFlag : int {
  kWavpackOpenTags = 0x2,   // look for text information as well
  kWavpackOpenUtf8 = 0x80,  // of version 5: the path is UTF-8 on Windows too
};

enum WavpackMode : int {
  kWavpackModeFloat = 0x8,
  kWavpackModeValidTag = 0x10,
  kWavpackModeApeTag = 0x100,  // the tag is APEv2, else ID3v1
};

// Every call goes to the loaded library.
class WavpackLibrary {
 public:
  // False when it can't be loaded or lacks one of the functions.
  bool load();

  uint32_t (*version)() = nullptr;
  // `error` takes kWavpackErrorBytes.
  WavpackContext* (*openFileInput)(const char* path, char* error, int flags, int normOffset) = nullptr;
  uint32_t (*numSamples)(WavpackContext* file) = nullptr;  // frames, or kWavpackUnknownLength
  int (*bitsPerSample)(WavpackContext* file) = nullptr;
  int (*numChannels)(WavpackContext* file) = nullptr;
  uint32_t (*sampleRate)(WavpackContext* file) = nullptr;
  // Interleaved, one 32-bit word a sample; returns how many frames came.
  uint32_t (*unpackSamples)(WavpackContext* file, int32_t* words, uint32_t frames) = nullptr;
  int (*mode)(WavpackContext* file) = nullptr;
  int (*numErrors)(WavpackContext* file) = nullptr;  // blocks that were damaged so far
  WavpackContext* (*closeFile)(WavpackContext* file) = nullptr;

 private:
  SharedLibrary library_;
};

}  // namespace plumetta
