// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/forbid_allocation.h"

#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

thread_local int forbidden = 0;

void abortWhereForbidden(const char* what) {
  if (forbidden == 0) return;
  forbidden = 0;  // what reports the end may allocate
  std::fputs(what, stderr);
  std::abort();
}

}  // namespace

// Every form is replaced, the ones that don't throw as well: a sanitizer's own would not fit the rest.
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  abortWhereForbidden("Memory was allocated on the audio thread\n");
  return std::malloc(bytes > 0 ? bytes : 1);
}
void* operator new(std::size_t bytes) {
  if (void* memory = ::operator new(bytes, std::nothrow)) return memory;
  throw std::bad_alloc();
}
void* operator new[](std::size_t bytes) { return ::operator new(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t& silent) noexcept {
  return ::operator new(bytes, silent);
}
void operator delete(void* memory) noexcept {
  abortWhereForbidden("Memory was freed on the audio thread\n");
  std::free(memory);
}
void operator delete[](void* memory) noexcept { ::operator delete(memory); }
void operator delete(void* memory, std::size_t) noexcept { ::operator delete(memory); }
void operator delete[](void* memory, std::size_t) noexcept { ::operator delete(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { ::operator delete(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { ::operator delete(memory); }

namespace plumetta {

ForbidAllocation::ForbidAllocation() { ++forbidden; }
ForbidAllocation::~ForbidAllocation() { --forbidden; }

}  // namespace plumetta
