// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/available_memory.h"

#include <windows.h>

#include <cstdint>

namespace plumetta {

size_t availableMemoryBytes() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  // Memory and paging file together, less what is promised already.
  return GlobalMemoryStatusEx(&status) ? static_cast<size_t>(status.ullAvailPageFile) : SIZE_MAX;
}

}  // namespace plumetta
