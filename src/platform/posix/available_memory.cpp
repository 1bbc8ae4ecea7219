// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/available_memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace plumetta {
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
