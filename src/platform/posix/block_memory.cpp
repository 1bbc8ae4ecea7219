// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/block_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
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

size_t mappedBytes(size_t bytes) {
  static const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  return bytes < kMappedFrom ? 0 : roundUp(bytes, page);
}

bool tooMuch(size_t present, size_t wanted) {
  if (wanted > static_cast<size_t>(PTRDIFF_MAX) - kHugePage) return true;
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

namespace {

// The one number in a file of the kernel's, or `fallback` when there is none ("max" means no bound).
size_t numberIn(const std::string& path, size_t fallback) {
  std::FILE* file = std::fopen(path.c_str(), "re");
  if (file == nullptr) return fallback;
  unsigned long long number = 0;
  const bool found = std::fscanf(file, "%llu", &number) == 1;
  std::fclose(file);
  return found ? static_cast<size_t>(number) : fallback;
}

// The folder that describes this process's control group (version 2); empty when it has none.
std::string controlGroupFolder() {
  std::FILE* file = std::fopen("/proc/self/cgroup", "re");
  if (file == nullptr) return {};
  char line[512];
  std::string folder;
  while (folder.empty() && std::fgets(line, sizeof line, file) != nullptr) {
    if (std::strncmp(line, "0::/", 4) != 0) continue;
    line[std::strcspn(line, "\n")] = '\0';
    folder = std::string("/sys/fs/cgroup") + (line + 3);
  }
  std::fclose(file);
  return folder;
}

// Bytes that the group is charged for files it has read, which the kernel drops before it runs out.
size_t cachedByControlGroup(const std::string& folder) {
  std::FILE* file = std::fopen((folder + "/memory.stat").c_str(), "re");
  if (file == nullptr) return 0;
  size_t cached = 0;
  char line[128];
  while (std::fgets(line, sizeof line, file) != nullptr) {
    unsigned long long value = 0;
    if (std::sscanf(line, "inactive_file %llu", &value) == 1 ||
        std::sscanf(line, "active_file %llu", &value) == 1) {
      cached += value;
    }
  }
  std::fclose(file);
  return cached;
}

// What the control group, and those around it, still let this process have.
size_t allowedByControlGroup() {
  size_t allowed = SIZE_MAX;
  const std::string root = "/sys/fs/cgroup";
  for (std::string folder = controlGroupFolder(); folder.size() >= root.size();
       folder.erase(std::min(folder.rfind('/'), folder.size()))) {
    const size_t limit = numberIn(folder + "/memory.max", SIZE_MAX);
    if (limit == SIZE_MAX) continue;
    const size_t charged = numberIn(folder + "/memory.current", 0);
    const size_t used = charged - std::min(charged, cachedByControlGroup(folder));
    allowed = std::min(allowed, limit - std::min(limit, used));
  }
  return allowed;
}

size_t availableOnMachine() {
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

}  // namespace

size_t availableMemoryBytes() { return std::min(availableOnMachine(), allowedByControlGroup()); }

}  // namespace plumetta
