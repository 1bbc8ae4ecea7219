// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

// Private to BlockMemory: address space with memory behind it, straight from the operating system.

namespace plumetta {

struct BlockPages {
  void* data = nullptr;
  size_t reserved = 0;  // bytes of address space; 0 where there is none
};

// Zeroes, which cost nothing until they are touched; none when there is no room for them.
BlockPages newBlockPages(size_t bytes);
// Keeps the leading bytes of those that there are, in place or by moving page tables. False, with the pages
// as they were, where it can do neither.
bool resizeBlockPages(BlockPages& pages, size_t from, size_t to);
void freeBlockPages(const BlockPages& pages);

}  // namespace plumetta
