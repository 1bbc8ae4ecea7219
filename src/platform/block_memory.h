// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

#include "platform/block_pages.h"

namespace plumetta {

// One contiguous, growable block of bytes for sample data. Large blocks come straight from the operating
// system, in huge pages where it has them, and grow and shrink in place or by moving page tables, so that no
// second copy of the samples ever exists.
class BlockMemory {
 public:
  BlockMemory() = default;
  ~BlockMemory() { release(); }
  BlockMemory(BlockMemory&& other) noexcept { swap(other); }
  BlockMemory& operator=(BlockMemory&& other) noexcept {
    BlockMemory taken(static_cast<BlockMemory&&>(other));
    swap(taken);
    return *this;
  }
  BlockMemory(const BlockMemory&) = delete;
  BlockMemory& operator=(const BlockMemory&) = delete;

  void* data() const { return pages_.data; }
  size_t size() const { return size_; }

  // Keeps the leading bytes; what is new is not initialised. False, with the old block kept, when there is no
  // memory for it.
  bool resize(size_t bytes);
  // Replaces the block by one of zeroes; large ones cost nothing until they are touched.
  bool resizeZeroed(size_t bytes);
  void release();
  void swap(BlockMemory& other) noexcept;

 private:
  bool resizeInPlace(size_t bytes);
  bool allocate(size_t bytes);

  BlockPages pages_;  // without reserved address space where the heap serves the block
  size_t size_ = 0;
};

}  // namespace plumetta
