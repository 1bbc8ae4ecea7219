// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/block_memory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace plumetta {
namespace {

constexpr size_t kHugePage = size_t{2} << 20;
// From here on a block is mapped; below, the heap serves it.
constexpr size_t kMappedFrom = size_t{4} << 20;
// Growth from which the machine is asked first whether it has the memory.
constexpr size_t kAskFrom = size_t{64} << 20;

size_t roundUp(size_t bytes, size_t unit) { return (bytes + unit - 1) / unit * unit; }

// Address space of whole pages, at a huge page's boundary; null when there is none.
void* reserveAligned(size_t bytes, int protection) {
  const size_t slack = bytes + kHugePage;
  void* base = mmap(nullptr, slack, protection, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (base == MAP_FAILED) return nullptr;
  auto* first = static_cast<uint8_t*>(base);
  auto* aligned = reinterpret_cast<uint8_t*>(roundUp(reinterpret_cast<uintptr_t>(first), kHugePage));
  const auto before = static_cast<size_t>(aligned - first);
  if (before > 0) munmap(first, before);
  munmap(aligned + bytes, slack - before - bytes);
  return aligned;
}

void* mapZeroed(size_t bytes) {
  void* block = reserveAligned(bytes, PROT_READ | PROT_WRITE);
  if (block != nullptr) madvise(block, bytes, MADV_HUGEPAGE);
  return block;
}

// Changes a mapping's size, moving its pages where it can't grow in place.
void* remap(void* block, size_t from, size_t to) {
  void* same = mremap(block, from, to, 0);
  if (same != MAP_FAILED) {
    if (to > from) madvise(same, to, MADV_HUGEPAGE);
    return same;
  }
  void* target = reserveAligned(to, PROT_NONE);
  if (target == nullptr) return nullptr;
  void* moved = mremap(block, from, to, MREMAP_MAYMOVE | MREMAP_FIXED, target);
  if (moved == MAP_FAILED) {
    munmap(target, to);
    return nullptr;
  }
  madvise(moved, to, MADV_HUGEPAGE);
  return moved;
}

size_t mappedBytes(size_t bytes) { return bytes < kMappedFrom ? 0 : roundUp(bytes, 4096); }

bool tooMuch(size_t present, size_t wanted) {
  return wanted > present && wanted - present >= kAskFrom && wanted - present > availableMemoryBytes();
}

void freeBlock(void* data, size_t mapped) {
  if (mapped > 0) {
    munmap(data, mapped);
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
  const size_t mapped = mappedBytes(bytes);
  void* data = nullptr;
  if (mapped == 0 && reserved_ == 0) {
    data = std::realloc(data_, bytes);
  } else if (mapped > 0 && reserved_ > 0) {
    data = mapped == reserved_ ? data_ : remap(data_, reserved_, mapped);
  } else {
    data = mapped > 0 ? mapZeroed(mapped) : std::malloc(bytes);
    if (data == nullptr) return false;
    if (data_ != nullptr) std::memcpy(data, data_, std::min(size_, bytes));
    freeBlock(data_, reserved_);
  }
  if (data == nullptr) return false;
  data_ = data;
  size_ = bytes;
  reserved_ = mapped;
  return true;
}

bool BlockMemory::resizeZeroed(size_t bytes) {
  if (bytes == 0) {
    release();
    return true;
  }
  if (tooMuch(0, bytes)) return false;
  const size_t mapped = mappedBytes(bytes);
  void* data = mapped > 0 ? mapZeroed(mapped) : std::calloc(bytes, 1);
  if (data == nullptr) return false;
  freeBlock(data_, reserved_);
  data_ = data;
  size_ = bytes;
  reserved_ = mapped;
  return true;
}

size_t availableMemoryBytes() {
  std::FILE* file = std::fopen("/proc/meminfo", "re");
  if (file == nullptr) return SIZE_MAX;
  size_t kilobytes = 0;
  char line[128];
  while (std::fgets(line, sizeof line, file) != nullptr) {
    unsigned long long value = 0;
    if (std::sscanf(line, "MemAvailable: %llu kB", &value) == 1 ||
        std::sscanf(line, "SwapFree: %llu kB", &value) == 1) {
      kilobytes += value;
    }
  }
  std::fclose(file);
  return kilobytes == 0 ? SIZE_MAX : kilobytes * 1024;
}

}  // namespace plumetta
