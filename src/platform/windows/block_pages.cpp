// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/block_pages.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>

namespace plumetta {
namespace {

// The least room left for growing; address space costs next to nothing.
constexpr size_t kLeastSlack = size_t{1} << 30;
constexpr size_t kUnit = size_t{64} << 10;

size_t roundUp(size_t bytes) { return (bytes + kUnit - 1) / kUnit * kUnit; }

}  // namespace

// Reserved address space of which the front is backed by memory, with room to grow in place where there is.
BlockPages newBlockPages(size_t bytes) {
  const size_t used = roundUp(bytes);
  for (const size_t room : {used + std::max(used, kLeastSlack), used}) {
    void* const base = VirtualAlloc(nullptr, room, MEM_RESERVE, PAGE_READWRITE);
    if (base == nullptr) continue;
    if (VirtualAlloc(base, used, MEM_COMMIT, PAGE_READWRITE) != nullptr) return {base, room};
    VirtualFree(base, 0, MEM_RELEASE);
  }
  return {};
}

// Backs more or less of the pages by memory.
bool resizeBlockPages(BlockPages& pages, size_t from, size_t to) {
  const size_t before = roundUp(from), after = roundUp(to);
  auto* const bytes = static_cast<uint8_t*>(pages.data);
  if (after > pages.reserved) return false;
  if (after > before)
    return VirtualAlloc(bytes + before, after - before, MEM_COMMIT, PAGE_READWRITE) != nullptr;
  if (after < before) VirtualFree(bytes + after, before - after, MEM_DECOMMIT);
  return true;
}

void freeBlockPages(const BlockPages& pages) { VirtualFree(pages.data, 0, MEM_RELEASE); }

}  // namespace plumetta
