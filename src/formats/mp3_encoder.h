// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "platform/file_system.h"
#include "platform/shared_library.h"

namespace plumetta {

// What an MP3 stream of constant bit rate is made from and how it is stored. The encoder resamples where the
// two rates differ.
struct Mp3Stream {
  int channels = 2;  // 1 or 2
  int inputRate = 44100;
  int storedRate = 44100;
  int bitRateKbits = 128;
};

// An encoder library that was loaded at run time, for one stream: begin, encode…, finish, and once the file
// is closed, completeFile. Nothing throws but for want of memory.
class Mp3Encoder {
 public:
  virtual ~Mp3Encoder() = default;

  virtual bool begin(const Mp3Stream& stream) = 0;
  // How many samples, of all channels together, `encode` takes at once.
  virtual size_t samplesPerChunk() const = 0;
  // Interleaved samples; `out` becomes what there is to be written then, often nothing.
  virtual bool encode(std::span<const int16_t> samples, std::vector<uint8_t>& out) = 0;
  // Ends the stream; `out` becomes the rest of it.
  virtual bool finish(std::vector<uint8_t>& out) = 0;
  // Writes what is known only now (the length and the encoder's delay, for players) over the first frame.
  virtual std::error_code completeFile(FileSystem& files, const std::string& path) = 0;
};

// The encoder that this machine has: "lame_enc.dll", or the system's "libmp3lame.so.0". Null when neither can
// be loaded. Loaded anew at each call, so that one that is installed meanwhile is found.
std::unique_ptr<Mp3Encoder> loadMp3Encoder();

// The two interfaces over a library that is open; null when it lacks one of the functions.
std::unique_ptr<Mp3Encoder> bladeEncoder(SharedLibrary library);
std::unique_ptr<Mp3Encoder> lameEncoder(SharedLibrary library);

}  // namespace plumetta
