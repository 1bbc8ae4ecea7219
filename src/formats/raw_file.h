// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

// Files without a header, of which only the person knows how the samples stand in them.

enum class RawSign { isSigned, isUnsigned, isFloat };

// Samples of 8 and 16 bits may be unsigned, those of 32 bits floats, and those of 64 bits are floats in any
// case; 24 bits are signed. Nothing for every other combination.
std::optional<SampleFormat> rawSampleFormat(int bits, ByteOrder byteOrder, RawSign sign);

// Taken by its name alone.
Likeness probeRaw(const FileHead& head);

// What is left behind the last whole frame is no sample.
// Of a file that is open already: no more than the first frames, for a look at it.
LoadResult readRaw(File& file, const RawLayout& layout, int64_t mostFrames, CWave& wave);
LoadResult loadRaw(FileSystem& files, const std::string& path, const RawLayout& layout, CWave& wave);

// The samples alone, little-endian and signed, in the buffer's own width.
SaveResult saveRaw(FileSystem& files, const std::string& path, const CWave& wave, const SaveOptions& options);
std::vector<std::string> lossesOfRaw(const CWave& wave);

}  // namespace plumetta
