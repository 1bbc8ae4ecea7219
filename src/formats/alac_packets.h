// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"
#include "formats/caf_alac.h"

namespace plumetta {

// Reads the packets again in which samples of more than 16 bits stand as they are, because coding would have
// made them longer: libsndfile loses bits in the second channel of each pair there. The buffer has the file's
// channels in the file's order. False when the person has asked to stop.
bool rereadPlainAlacPackets(File& file, const CafAlac& alac, CWave& wave);

}  // namespace plumetta
