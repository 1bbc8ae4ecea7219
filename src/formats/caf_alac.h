// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "formats/input_stream.h"

namespace plumetta {

// What a CAF tells of the ALAC in it.
struct CafAlac {
  // A chunk's body, as much of it as the file has.
  struct Chunk {
    uint64_t begin = 0;
    uint64_t size = 0;
  };

  static constexpr uint64_t kDepthNumberAt =
      35;  // in the file: the last byte of the description's format flags

  int depth = 0;                // bits of a sample, by the codec's own chunk
  uint8_t depthNumber = 0;      // how the description is to tell that depth
  bool isDepthMissing = false;  // in the description, where some programs leave it out
  uint64_t packetFrames = 0;    // of each packet but the last
  Chunk sound;                  // packet by packet, behind four bytes
  Chunk packetTable;            // empty without one

  // Nothing of a file that is no CAF, holds no ALAC, or none of a depth that there is.
  static std::optional<CafAlac> of(InputStream& in);
  // Of any file: ALAC with a packet table whose size ends in 32 bits of 0, by which libsndfile would divide.
  // Looked for wherever it may stand, since chunks of absurd sizes are passed over in another way there.
  static bool hasTableOfNoSize(InputStream& in);
};

}  // namespace plumetta
