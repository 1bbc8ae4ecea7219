// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/block_memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/available_memory.h"

namespace plumetta {
namespace {

// From here on a block has pages of its own; below, the heap serves it.
constexpr size_t kPagesFrom = size_t{4} << 20;
// Growth from which the machine is asked first whether it has the memory.
constexpr size_t kAskFrom = size_t{64} << 20;
// More than any address space holds; keeps sums of sizes from wrapping round.
constexpr size_t kLargestBlock = size_t{1} << 47;

bool tooMuch(size_t present, size_t wanted) {
  if (wanted > kLargestBlock) return true;
  return wanted > present && wanted - present >= kAskFrom && wanted - present > availableMemoryBytes();
}

}  // namespace

void BlockMemory::swap(BlockMemory& other) noexcept {
  std::swap(pages_, other.pages_);
  std::swap(size_, other.size_);
}

void BlockMemory::release() {
  pages_.reserved > 0 ? freeBlockPages(pages_) : std::free(pages_.data);
  pages_ = {};
  size_ = 0;
}

bool BlockMemory::resize(size_t bytes) {
  if (bytes == 0) {
    release();
    return true;
  }
  if (tooMuch(size_, bytes)) return false;
  if (!resizeInPlace(bytes)) {
    BlockMemory other;
    if (!other.allocate(bytes)) return false;
    if (size_ > 0) std::memcpy(other.data(), data(), std::min(size_, bytes));
    swap(other);
  }
  size_ = bytes;
  return true;
}

bool BlockMemory::resizeInPlace(size_t bytes) {
  const bool pages = pages_.reserved > 0;
  if (pages != (bytes >= kPagesFrom)) return false;
  if (pages) return resizeBlockPages(pages_, size_, bytes);
  void* const data = std::realloc(pages_.data, bytes);
  if (data != nullptr) pages_.data = data;
  return data != nullptr;
}

bool BlockMemory::resizeZeroed(size_t bytes) {
  if (bytes == 0) {
    release();
    return true;
  }
  BlockMemory other;
  if (tooMuch(0, bytes) || !other.allocate(bytes)) return false;
  swap(other);
  return true;
}

bool BlockMemory::allocate(size_t bytes) {
  if (bytes >= kPagesFrom) {
    pages_ = newBlockPages(bytes);
  } else {
    pages_.data = std::calloc(bytes, 1);
  }
  if (pages_.data == nullptr) return false;
  size_ = bytes;
  return true;
}

}  // namespace plumetta
