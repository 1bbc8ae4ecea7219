// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/ogg_pages.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <optional>

namespace plumetta {
namespace {

constexpr uint64_t kFlacMappingBytes = 9;  // 0x7F "FLAC", two of version, two of the number of headers

struct Page {
  uint32_t serial = 0;
  uint64_t bytes = 0;  // of its content, which follows
};

std::optional<Page> readPageHeader(InputStream& in) {
  char magic[4] = {};
  uint8_t segments = 0;
  Page page;
  if (in.read(magic, 4) != 4 || std::memcmp(magic, "OggS", 4) != 0) return std::nullopt;
  in.skip(10);  // version, flags, granule position
  in.readLittle(page.serial);
  in.skip(8);  // sequence number, checksum
  if (!in.readLittle(segments)) return std::nullopt;
  std::array<uint8_t, 255> lacing;
  if (in.read(lacing.data(), segments) != segments) return std::nullopt;
  page.bytes = std::accumulate(lacing.begin(), lacing.begin() + segments, uint64_t{0});
  return page;
}

}  // namespace

std::vector<SegmentedFile::Segment> flacSegmentsOfOgg(InputStream& in) {
  std::vector<SegmentedFile::Segment> segments;
  std::optional<uint32_t> serial;
  while (const auto page = readPageHeader(in)) {
    const uint64_t begin = in.position();
    const uint64_t size = std::min(page->bytes, in.remaining());
    if (!serial && size < kFlacMappingBytes) break;
    const uint64_t skipped = serial ? 0 : kFlacMappingBytes;
    if (!serial) serial = page->serial;
    if (page->serial == *serial) segments.push_back({begin + skipped, size - skipped});
    in.skip(page->bytes);
  }
  return segments;
}

}  // namespace plumetta
