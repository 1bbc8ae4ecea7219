// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "platform/file_system.h"

namespace plumetta {

// A file read through a buffer. Reading past the end gives fewer bytes and never an error of its own.
class InputStream {
 public:
  explicit InputStream(File& file) : file_(file), end_(file.size()), buffer_(kBufferBytes) {}

  uint64_t size() const { return end_; }
  uint64_t position() const { return position_; }
  uint64_t remaining() const { return position_ < end_ ? end_ - position_ : 0; }

  // How many bytes came; fewer than asked at the end of the file or where the disk fails.
  size_t read(void* destination, size_t bytes);
  void seek(uint64_t offset);
  void skip(uint64_t bytes) { seek(position_ + bytes < position_ ? end_ : position_ + bytes); }

  // Little-endian fields; false when the bytes aren't there.
  template <class T>
  bool readLittle(T& value) {
    std::array<uint8_t, sizeof(T)> bytes;
    if (read(bytes.data(), sizeof(T)) != sizeof(T)) return false;
    uint64_t bits = 0;
    for (size_t i = sizeof(T); i-- > 0;) bits = bits << 8 | bytes[i];
    if constexpr (sizeof(T) == 4) {
      const auto narrow = static_cast<uint32_t>(bits);
      std::memcpy(&value, &narrow, sizeof(T));
    } else if constexpr (sizeof(T) == 2) {
      const auto narrow = static_cast<uint16_t>(bits);
      std::memcpy(&value, &narrow, sizeof(T));
    } else {
      static_assert(sizeof(T) == 1);
      std::memcpy(&value, bytes.data(), 1);
    }
    return true;
  }

 private:
  static constexpr size_t kBufferBytes = size_t{1} << 18;

  File& file_;
  uint64_t end_;
  uint64_t position_ = 0;      // of the next byte handed out
  uint64_t filePosition_ = 0;  // of the next byte that the file will give
  size_t first_ = 0;           // unread bytes of the buffer: [first_, last_)
  size_t last_ = 0;
  std::vector<uint8_t> buffer_;
};

}  // namespace plumetta
