// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "formats/format.h"

namespace plumetta {

// By the first bytes, as Format::probe.
Likeness probeAiff(const FileHead& head);
Likeness probeAmigaIff(const FileHead& head);
Likeness probeAu(const FileHead& head);
Likeness probeVoc(const FileHead& head);
Likeness probeCaf(const FileHead& head);
Likeness probeW64(const FileHead& head);
Likeness probeOpus(const FileHead& head);

// How many bytes a file has by what its own header says, so that a shorter one is known for truncated; 0
// where the header doesn't tell.
uint64_t formBytes(const FileHead& head);
uint64_t auBytes(const FileHead& head);
uint64_t cafBytes(const FileHead& head);
uint64_t w64Bytes(const FileHead& head);
// How many bytes of sound an Amiga IFF has by its own header; 0 where that is not in the head.
uint64_t amigaSoundBytes(const FileHead& head);

}  // namespace plumetta
