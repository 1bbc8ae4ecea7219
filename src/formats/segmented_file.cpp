// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/segmented_file.h"

#include <algorithm>

namespace plumetta {

SegmentedFile::SegmentedFile(File& file, const std::vector<Segment>& segments) : file_(file) {
  places_.reserve(segments.size());
  for (const Segment& segment : segments) {
    if (segment.size == 0) continue;
    places_.push_back({size_, segment.offset, segment.size});
    size_ += segment.size;
  }
}

size_t SegmentedFile::read(void* destination, size_t bytes, std::error_code& error) {
  auto* target = static_cast<uint8_t*>(destination);
  size_t done = 0;
  auto place =
      std::upper_bound(places_.begin(), places_.end(), position_,
                       [](uint64_t position, const Place& p) { return position < p.start + p.size; });
  for (; done < bytes && place != places_.end(); ++place) {
    const uint64_t inside = position_ - place->start;
    const size_t part = static_cast<size_t>(std::min<uint64_t>(bytes - done, place->size - inside));
    error = file_.seek(place->offset + inside);
    if (error) break;
    const size_t come = file_.read(target + done, part, error);
    done += come;
    position_ += come;
    if (come < part) break;
  }
  return done;
}

std::error_code SegmentedFile::write(const void*, size_t) {
  return std::make_error_code(std::errc::operation_not_supported);
}

std::error_code SegmentedFile::seek(uint64_t offset) {
  position_ = std::min(offset, size_);
  return {};
}

}  // namespace plumetta
