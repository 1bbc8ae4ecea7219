// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdlib>

#include "support/memory_file_system.h"

inline void require(bool condition) {
  if (!condition) std::abort();
}

// A disk in memory with nothing on it but a file of these bytes.
struct InputFile : plumetta::MemoryFileSystem {
  InputFile(const char* name, const uint8_t* data, size_t size) {
    contents[name].assign(reinterpret_cast<const char*>(data), size);
  }
};
