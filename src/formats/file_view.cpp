// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/file_view.h"

#include <algorithm>

namespace plumetta {

size_t FileView::read(void* destination, size_t bytes, std::error_code& error) {
  error = file_.seek(start_ + position_);
  if (error) return 0;
  const size_t come = file_.read(destination, bytes, error);
  if (correction_ && correction_->offset >= position_ && correction_->offset - position_ < come) {
    static_cast<uint8_t*>(destination)[correction_->offset - position_] = correction_->byte;
  }
  position_ += come;
  return come;
}

std::error_code FileView::write(const void*, size_t) {
  return std::make_error_code(std::errc::operation_not_supported);
}

std::error_code FileView::seek(uint64_t offset) {
  position_ = std::min(offset, size());
  return {};
}

}  // namespace plumetta
