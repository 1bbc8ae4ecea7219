// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "formats/input_stream.h"
#include "formats/sndfile_kind.h"
#include "formats/sndfile_probes.h"

namespace plumetta {

// Fills the buffer through libsndfile, samples by the scales of sample_codec.h: the same sound gives the same
// floats whichever container it comes from.
LoadResult loadSndfile(const SndfileKind& kind, FileSystem& files, const std::string& path, CWave& wave);
// The same from a file at its start, whose name the buffer doesn't get.
LoadResult loadSndfile(const SndfileKind& kind, File& file, CWave& wave);
// The same from a stream at its start; the buffer's file name stays. `claimedBytes`: the length that the file
// has by its own header, where that is more than there is.
LoadResult loadSndfile(const SndfileKind& kind, InputStream& in, std::optional<uint64_t> claimedBytes,
                       CWave& wave);
SaveResult saveSndfile(const SndfileKind& kind, FileSystem& files, const std::string& path, const CWave& wave,
                       const SaveOptions& options);

// The same as the functions of a row of the format table.
template <const SndfileKind& kKind>
LoadResult readSndfile(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  return loadSndfile(kKind, files, path, wave);
}
template <const SndfileKind& kKind>
SaveResult writeSndfile(FileSystem& files, const std::string& path, const CWave& wave,
                        const SaveOptions& options) {
  return saveSndfile(kKind, files, path, wave, options);
}
template <const SndfileKind& kKind>
std::vector<std::string> sndfileLosses(const CWave& wave) {
  return lossesOf(kKind, wave);
}

}  // namespace plumetta
