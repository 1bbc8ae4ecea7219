// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "platform/file_system.h"

namespace plumetta {

// Stretches of another file read as one: a stream without the pages that it is packed in. Reading alone.
class SegmentedFile final : public File {
 public:
  struct Segment {
    uint64_t offset;  // in the other file
    uint64_t size;
  };

  // The other file must outlive this one.
  SegmentedFile(File& file, const std::vector<Segment>& segments);

  size_t read(void* destination, size_t bytes, std::error_code& error) override;
  std::error_code write(const void*, size_t) override;
  std::error_code seek(uint64_t offset) override;
  uint64_t size() const override { return size_; }
  std::error_code sync() override { return {}; }
  std::error_code close() override { return {}; }

 private:
  struct Place {
    uint64_t start;   // in this file
    uint64_t offset;  // in the other one
    uint64_t size;
  };

  File& file_;
  std::vector<Place> places_;
  uint64_t size_ = 0;
  uint64_t position_ = 0;
};

}  // namespace plumetta
