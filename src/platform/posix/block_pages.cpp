// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/block_pages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace plumetta {
namespace {

constexpr size_t kHugePage = size_t{2} << 20;

size_t roundUp(size_t bytes, size_t unit) { return (bytes + unit - 1) / unit * unit; }

size_t wholePages(size_t bytes) {
  static const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  return roundUp(bytes, page);
}

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

// Changes a mapping's size, moving its pages where it can't grow in place.
void* remap(void* block, size_t from, size_t to) {
  void* same = mremap(block, from, to, 0);
  if (same != MAP_FAILED) {
    if (to > from) madvise(same, to, MADV_HUGEPAGE);
    return same;
  }
  void* target = reserveAligned(to, PROT_NONE);
  if (target == nullptr) {
    // Under a limit on address space there may be room for one block but not for two beside each other.
    void* anywhere = mremap(block, from, to, MREMAP_MAYMOVE);
    return anywhere == MAP_FAILED ? nullptr : anywhere;
  }
  void* moved = mremap(block, from, to, MREMAP_MAYMOVE | MREMAP_FIXED, target);
  if (moved == MAP_FAILED) {
    munmap(target, to);
    return nullptr;
  }
  madvise(moved, to, MADV_HUGEPAGE);
  return moved;
}

}  // namespace

BlockPages newBlockPages(size_t bytes) {
  const size_t size = wholePages(bytes);
  void* data = reserveAligned(size, PROT_READ | PROT_WRITE);
  if (data == nullptr) return {};
  madvise(data, size, MADV_HUGEPAGE);
  return {data, size};
}

bool resizeBlockPages(BlockPages& pages, size_t, size_t to) {
  const size_t size = wholePages(to);
  if (size == pages.reserved) return true;
  void* const data = remap(pages.data, pages.reserved, size);
  if (data == nullptr) return false;
  pages = {data, size};
  return true;
}

void freeBlockPages(const BlockPages& pages) { munmap(pages.data, pages.reserved); }

}  // namespace plumetta
