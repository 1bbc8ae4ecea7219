// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/caf_reader.h"

#include <algorithm>
#include <array>

#include "formats/alac_packets.h"
#include "formats/file_view.h"
#include "formats/sndfile_formats.h"

namespace plumetta {
namespace {

// ALAC has an order of its own: centre, the fronts from the inside out, the sides, the back, the deep one. A
// row tells where a WAV has them, of three channels and so on.
using ChannelOrder = std::array<size_t, 8>;
constexpr std::array<ChannelOrder, 6> kWavOrder{{{2, 0, 1},
                                                 {2, 0, 1, 3},
                                                 {2, 0, 1, 3, 4},
                                                 {2, 0, 1, 4, 5, 3},
                                                 {2, 0, 1, 4, 5, 6, 3},
                                                 {2, 6, 7, 0, 1, 4, 5, 3}}};

void orderAsWav(CWave& wave) {
  const auto channels = static_cast<size_t>(wave.channels());
  if (channels < 3 || channels > 8) return;
  const ChannelOrder& order = kWavOrder[channels - 3];
  float* frame = wave.samples();
  for (int32_t f = 0; f < wave.frames(); ++f, frame += channels) {
    std::array<float, 8> ordered;
    for (size_t c = 0; c < channels; ++c) ordered[order[c]] = frame[c];
    std::copy_n(ordered.begin(), channels, frame);
  }
}

LoadResult loadAlac(File& file, const CafAlac& alac, CWave& wave) {
  std::optional<FileView::Correction> correction;
  if (alac.isDepthMissing) correction = {CafAlac::kDepthNumberAt, alac.depthNumber};
  FileView view(file, 0, correction);
  LoadResult result = loadSndfile(kCaf, view, wave);
  if (result.status != LoadStatus::loaded) return result;
  if (!rereadPlainAlacPackets(file, alac, wave)) return {LoadStatus::cancelled, {}, {}, {}};
  if (alac.isDepthMissing) orderAsWav(wave);
  return result;
}

}  // namespace

LoadResult loadCaf(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  InputStream in(*file);
  if (CafAlac::hasTableOfNoSize(in))
    return LoadResult::failure("This CAF file is damaged: its packet table has no size.");
  const auto alac = CafAlac::of(in);
  FileView whole(*file, 0);
  LoadResult result = alac ? loadAlac(*file, *alac, wave) : loadSndfile(kCaf, whole, wave);
  wave.setFileName(path);
  return result;
}

}  // namespace plumetta
