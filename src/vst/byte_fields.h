// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace plumetta {

// The fields of a file that lies in memory whole: of 32 bits each, in either byte order.

class FieldReader {
 public:
  explicit FieldReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  size_t position() const { return position_; }
  size_t remaining() const { return bytes_.size() - position_; }
  // To a place from the start; beyond the end there is nothing left.
  void seek(size_t position) { position_ = std::min(position, bytes_.size()); }

  // False, with nothing read, when the bytes aren't there.
  bool little(int32_t& value) { return number(value, false); }
  bool big(int32_t& value) { return number(value, true); }
  bool little(float& value) { return real(value, false); }
  bool big(float& value) { return real(value, true); }
  bool take(size_t count, std::span<const uint8_t>& bytes) {
    if (count > remaining()) return false;
    bytes = bytes_.subspan(position_, count);
    position_ += count;
    return true;
  }
  // Four characters; fewer at the end.
  std::string_view magic() {
    const size_t count = std::min<size_t>(4, remaining());
    position_ += count;
    return {reinterpret_cast<const char*>(bytes_.data()) + position_ - count, count};
  }
  // So many bytes of text, up to the first zero.
  bool text(size_t count, std::string& text) {
    std::span<const uint8_t> bytes;
    if (!take(count, bytes)) return false;
    text.assign(bytes.begin(), std::find(bytes.begin(), bytes.end(), uint8_t{0}));
    return true;
  }

 private:
  bool number(int32_t& value, bool bigEndian) {
    std::span<const uint8_t> bytes;
    if (!take(4, bytes)) return false;
    uint32_t bits = 0;
    for (size_t i = 0; i < 4; ++i) bits = bits << 8 | bytes[bigEndian ? i : 3 - i];
    value = static_cast<int32_t>(bits);
    return true;
  }
  bool real(float& value, bool bigEndian) {
    int32_t bits = 0;
    if (!number(bits, bigEndian)) return false;
    value = std::bit_cast<float>(bits);
    return true;
  }

  std::span<const uint8_t> bytes_;
  size_t position_ = 0;
};

class FieldWriter {
 public:
  void little(int32_t value) { number(value, false); }
  void big(int32_t value) { number(value, true); }
  void little(float value) { number(std::bit_cast<int32_t>(value), false); }
  void big(float value) { number(std::bit_cast<int32_t>(value), true); }
  void text(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
  void bytes(std::span<const uint8_t> more) { bytes_.insert(bytes_.end(), more.begin(), more.end()); }
  void zeros(size_t count) { bytes_.resize(bytes_.size() + count); }

  const std::vector<uint8_t>& content() const { return bytes_; }

 private:
  void number(int32_t value, bool bigEndian) {
    const auto bits = static_cast<uint32_t>(value);
    for (int i = 0; i < 4; ++i) {
      bytes_.push_back(static_cast<uint8_t>(bits >> (bigEndian ? 24 - 8 * i : 8 * i)));
    }
  }

  std::vector<uint8_t> bytes_;
};

}  // namespace plumetta
