// SPDX-License-Identifier: GPL-3.0-or-later
#include <windows.h>

#include <cstdint>

#include "platform/block_memory.h"

namespace plumetta {

size_t availableMemoryBytes() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  // Memory and paging file together, less what is promised already.
  return GlobalMemoryStatusEx(&status) ? static_cast<size_t>(status.ullAvailPageFile) : SIZE_MAX;
}

}  // namespace plumetta
