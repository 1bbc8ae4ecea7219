// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/caf_reader.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "formats/file_view.h"
#include "formats/sndfile_formats.h"

namespace plumetta {
namespace {

using namespace std::string_view_literals;

constexpr uint64_t kFileHeader = 8;
constexpr uint64_t kChunkHeader = 12;
constexpr uint64_t kDescription = kFileHeader + kChunkHeader;  // the first chunk, always
constexpr uint64_t kFormatFlags = kDescription + 12;           // behind sample rate and format
constexpr size_t kAtom = 12;  // bytes of 'frma', and of the head of 'alac', ahead of the configuration
constexpr size_t kConfiguration = 24;
constexpr size_t kDepth = 5;  // in the configuration

using Cookie = std::array<uint8_t, 2 * kAtom + kConfiguration>;

uint64_t readBig64(InputStream& in) {
  std::array<uint8_t, 8> bytes{};
  in.read(bytes.data(), bytes.size());
  uint64_t value = 0;
  for (const uint8_t byte : bytes) value = value << 8 | byte;
  return value;
}

// The bytes of the 'kuki' chunk, as many as are there; 0 without one. Chunks behind the sound aren't looked
// at.
size_t readCookie(InputStream& in, Cookie& cookie) {
  in.seek(kFileHeader);
  std::array<char, 4> name;
  while (in.read(name.data(), name.size()) == name.size()) {
    const uint64_t size = readBig64(in);
    const std::string_view chunk(name.data(), name.size());
    if (chunk == "kuki")
      return in.read(cookie.data(), static_cast<size_t>(std::min<uint64_t>(size, cookie.size())));
    if (chunk == "data") break;
    in.skip(size);
  }
  return 0;
}

// 0 where the configuration isn't all there.
int alacDepth(InputStream& in) {
  Cookie cookie{};
  const size_t size = readCookie(in, cookie);
  size_t at = 0;
  for (const std::string_view atom : {"frma"sv, "alac"sv}) {
    const std::string_view name(reinterpret_cast<const char*>(cookie.data() + at + 4), atom.size());
    if (size >= at + kAtom && name == atom) at += kAtom;
  }
  return size >= at + kConfiguration ? cookie[at + kDepth] : 0;
}

// The format flags of ALAC are the number of its depth; some programs write 0.
std::optional<FileView::Correction> missingDepth(File& file) {
  InputStream in(file);
  std::array<char, 8> format{};  // name and flags
  in.seek(kFormatFlags - 4);
  in.read(format.data(), format.size());
  if (std::string_view(format.data(), format.size()) != "alac\0\0\0\0"sv) return std::nullopt;
  constexpr std::array<int, 4> depths{16, 20, 24, 32};
  const auto found = std::find(depths.begin(), depths.end(), alacDepth(in));
  if (found == depths.end()) return std::nullopt;
  return FileView::Correction{kFormatFlags + 3, static_cast<uint8_t>(found - depths.begin() + 1)};
}

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

}  // namespace

LoadResult loadCaf(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  const auto correction = missingDepth(*file);
  FileView view(*file, 0, correction);
  LoadResult result = loadSndfile(kCaf, view, wave);
  if (correction && result.status == LoadStatus::loaded) orderAsWav(wave);
  wave.setFileName(path);
  return result;
}

}  // namespace plumetta
