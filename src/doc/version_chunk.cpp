// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/version_chunk.h"

#include <array>
#include <cstring>

namespace plumetta {

void addVersionChunk(CWave& wave) {
  constexpr size_t kBytes = 32;
  std::array<uint8_t, kBytes> body{};
  std::memcpy(body.data(), kVersion, std::strlen(kVersion));
  wave.extraChunks.add(kVersionChunkId, body);
}

}  // namespace plumetta
