// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/output_stream.h"

#include <bit>

namespace plumetta {

void OutputStream::write(const void* source, size_t bytes) {
  if (error_) return;
  position_ += bytes;
  if (buffer_.size() + bytes > kBufferBytes) flush();
  if (bytes >= kBufferBytes) {
    if (!error_) error_ = file_.write(source, bytes);
    return;
  }
  const auto* first = static_cast<const uint8_t*>(source);
  buffer_.insert(buffer_.end(), first, first + bytes);
}

void OutputStream::writeFloat(float value) { writeLittle(std::bit_cast<uint32_t>(value)); }

void OutputStream::seek(uint64_t offset) {
  if (offset == position_) return;
  flush();
  if (!error_) error_ = file_.seek(offset);
  position_ = offset;
}

std::error_code OutputStream::flush() {
  if (!error_ && !buffer_.empty()) error_ = file_.write(buffer_.data(), buffer_.size());
  buffer_.clear();
  return error_;
}

}  // namespace plumetta
