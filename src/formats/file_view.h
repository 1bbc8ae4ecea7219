// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "platform/file_system.h"

namespace plumetta {

// Another file as a library is to see it: from some place on, and with one byte put right. Reading alone.
class FileView final : public File {
 public:
  struct Correction {
    uint64_t offset;  // from where the view begins
    uint8_t byte;     // that is read there
  };

  // The other file must outlive this one. `start` is at most its size.
  explicit FileView(File& file, uint64_t start, std::optional<Correction> correction = std::nullopt)
      : file_(file), start_(start), correction_(correction) {}

  size_t read(void* destination, size_t bytes, std::error_code& error) override;
  std::error_code write(const void*, size_t) override;
  std::error_code seek(uint64_t offset) override;
  uint64_t size() const override { return file_.size() - start_; }
  std::error_code sync() override { return {}; }
  std::error_code close() override { return {}; }

 private:
  File& file_;
  uint64_t start_;
  uint64_t position_ = 0;  // from the start of the view
  std::optional<Correction> correction_;
};

}  // namespace plumetta
