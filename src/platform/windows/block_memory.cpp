// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/block_memory.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace plumetta {
namespace {

// From here on a block is one of reserved address space, of which the front is backed by memory.
constexpr size_t kReservedFrom = size_t{4} << 20;
// The least room left for growing; address space costs next to nothing.
constexpr size_t kLeastSlack = size_t{1} << 30;
constexpr size_t kUnit = size_t{64} << 10;
// Growth from which the machine is asked first whether it has the memory.
constexpr size_t kAskFrom = size_t{64} << 20;
// More than any address space holds; keeps the sums below from wrapping round.
constexpr size_t kLargestBlock = size_t{1} << 47;

size_t roundUp(size_t bytes) { return (bytes + kUnit - 1) / kUnit * kUnit; }

bool tooMuch(size_t present, size_t wanted) {
  if (wanted > kLargestBlock) return true;
  return wanted > present && wanted - present >= kAskFrom && wanted - present > availableMemoryBytes();
}

struct Reserved {
  void* data = nullptr;
  size_t reserved = 0;
};

// A new block of zeroes with room to grow in place where the address space has it.
Reserved reserveBlock(size_t bytes) {
  const size_t used = roundUp(bytes);
  for (const size_t room : {used + std::max(used, kLeastSlack), used}) {
    void* const base = VirtualAlloc(nullptr, room, MEM_RESERVE, PAGE_READWRITE);
    if (base == nullptr) continue;
    if (VirtualAlloc(base, used, MEM_COMMIT, PAGE_READWRITE) != nullptr) return {base, room};
    VirtualFree(base, 0, MEM_RELEASE);
  }
  return {};
}

// Backs more or less of a block by memory. False when there is none or the room is too small.
bool resizeInPlace(const Reserved& block, size_t from, size_t to) {
  const size_t before = roundUp(from);
  const size_t after = roundUp(to);
  auto* const bytes = static_cast<uint8_t*>(block.data);
  if (after > block.reserved) return false;
  if (after > before)
    return VirtualAlloc(bytes + before, after - before, MEM_COMMIT, PAGE_READWRITE) != nullptr;
  if (after < before) VirtualFree(bytes + after, before - after, MEM_DECOMMIT);
  return true;
}

void freeBlock(void* data, size_t reserved) {
  if (reserved > 0) {
    VirtualFree(data, 0, MEM_RELEASE);
  } else {
    std::free(data);
  }
}

}  // namespace

void BlockMemory::swap(BlockMemory& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(size_, other.size_);
  std::swap(reserved_, other.reserved_);
}

void BlockMemory::release() {
  freeBlock(data_, reserved_);
  data_ = nullptr;
  size_ = reserved_ = 0;
}

bool BlockMemory::resize(size_t bytes) {
  if (bytes == 0) {
    release();
    return true;
  }
  if (tooMuch(size_, bytes)) return false;
  const bool large = bytes >= kReservedFrom;
  if (large && reserved_ > 0 && resizeInPlace({data_, reserved_}, size_, bytes)) {
    size_ = bytes;
    return true;
  }
  Reserved block;
  if (large) {
    block = reserveBlock(bytes);
  } else {
    block.data = reserved_ > 0 ? std::malloc(bytes) : std::realloc(data_, bytes);
  }
  if (block.data == nullptr) return false;
  if (large || reserved_ > 0) {
    if (data_ != nullptr) std::memcpy(block.data, data_, std::min(size_, bytes));
    freeBlock(data_, reserved_);
  }
  data_ = block.data;
  size_ = bytes;
  reserved_ = block.reserved;
  return true;
}

bool BlockMemory::resizeZeroed(size_t bytes) {
  if (bytes == 0) {
    release();
    return true;
  }
  if (tooMuch(0, bytes)) return false;
  Reserved block;
  if (bytes >= kReservedFrom) {
    block = reserveBlock(bytes);
  } else {
    block.data = std::calloc(bytes, 1);
  }
  if (block.data == nullptr) return false;
  freeBlock(data_, reserved_);
  data_ = block.data;
  size_ = bytes;
  reserved_ = block.reserved;
  return true;
}

size_t availableMemoryBytes() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  // Memory and paging file together, less what is promised already.
  return GlobalMemoryStatusEx(&status) ? static_cast<size_t>(status.ullAvailPageFile) : SIZE_MAX;
}

}  // namespace plumetta
