// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <vector>

#include "platform/file_system.h"

namespace plumetta {

// A file written through a buffer. The first failure is kept, and everything after it does nothing.
class OutputStream {
 public:
  explicit OutputStream(File& file) : file_(file) { buffer_.reserve(kBufferBytes); }

  void write(const void* source, size_t bytes);
  void write(std::string_view text) { write(text.data(), text.size()); }
  template <class T>
  void writeLittle(T value) {
    static_assert(std::is_integral_v<T>);
    uint8_t bytes[sizeof(T)];
    for (size_t i = 0; i < sizeof(T); ++i) {
      bytes[i] = static_cast<uint8_t>(static_cast<std::make_unsigned_t<T>>(value) >> (8 * i));
    }
    write(bytes, sizeof(T));
  }
  void writeFloat(float value);

  // The offset from the start at which the next byte goes. What stands at an offset that was moved back to is
  // overwritten.
  uint64_t position() const { return position_; }
  void seek(uint64_t offset);

  bool failed() const { return static_cast<bool>(error_); }
  // Hands the rest to the file and tells how it all went.
  std::error_code flush();

 private:
  static constexpr size_t kBufferBytes = size_t{1} << 18;

  File& file_;
  std::vector<uint8_t> buffer_;
  uint64_t position_ = 0;
  std::error_code error_;
};

}  // namespace plumetta
