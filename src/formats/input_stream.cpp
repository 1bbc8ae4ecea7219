// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/input_stream.h"

#include <algorithm>

namespace plumetta {

size_t InputStream::read(void* destination, size_t bytes) {
  auto* target = static_cast<uint8_t*>(destination);
  size_t done = 0;
  while (done < bytes) {
    if (first_ == last_) {
      std::error_code error;
      first_ = 0;
      last_ = file_.read(buffer_.data(), buffer_.size(), error);
      filePosition_ += last_;
      if (last_ == 0) break;
    }
    const size_t part = std::min(bytes - done, last_ - first_);
    std::memcpy(target + done, buffer_.data() + first_, part);
    first_ += part;
    done += part;
  }
  position_ += done;
  return done;
}

void InputStream::seek(uint64_t offset) {
  offset = std::min(offset, end_);
  const uint64_t bufferStart = filePosition_ - last_;
  if (offset >= bufferStart && offset <= filePosition_) {
    first_ = static_cast<size_t>(offset - bufferStart);
  } else {
    first_ = last_ = 0;
    if (file_.seek(offset)) end_ = offset;  // what can't be reached can't be read either
    filePosition_ = offset;
  }
  position_ = offset;
}

}  // namespace plumetta
