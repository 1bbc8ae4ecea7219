// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/caf_alac.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace plumetta {
namespace {

using namespace std::string_view_literals;

constexpr uint64_t kFileHeader = 8;
constexpr size_t kDescriptionEnd = 52;  // of the first chunk, always
constexpr size_t kFormat = 28, kFormatFlags = 32, kPacketFrames = 40;
constexpr int kMostChunks = 1000;
constexpr size_t kAtom = 12;  // bytes of 'frma', and of the head of 'alac', ahead of the configuration
constexpr size_t kConfiguration = 24;
constexpr size_t kDepth = 5;  // in the configuration

uint64_t big(const uint8_t* bytes, size_t count) {
  uint64_t value = 0;
  for (size_t i = 0; i < count; ++i) value = value << 8 | bytes[i];
  return value;
}

std::string_view text(const uint8_t* bytes, size_t count) {
  return {reinterpret_cast<const char*>(bytes), count};
}

CafAlac::Chunk findChunk(InputStream& in, std::string_view name) {
  in.seek(kFileHeader);
  std::array<uint8_t, 12> header;
  for (int i = 0; i < kMostChunks && in.read(header.data(), header.size()) == header.size(); ++i) {
    const uint64_t size = std::min(big(header.data() + 4, 8), in.remaining());
    if (text(header.data(), 4) == name) return {in.position(), size};
    in.skip(size);
  }
  return {};
}

// 0 where the configuration isn't all there.
int depthOf(InputStream& in) {
  const CafAlac::Chunk cookie = findChunk(in, "kuki");
  std::array<uint8_t, 2 * kAtom + kConfiguration> bytes{};
  in.seek(cookie.begin);
  const size_t size =
      in.read(bytes.data(), static_cast<size_t>(std::min<uint64_t>(cookie.size, bytes.size())));
  size_t at = 0;
  for (const std::string_view atom : {"frma"sv, "alac"sv}) {
    if (size >= at + kAtom && text(bytes.data() + at + 4, 4) == atom) at += kAtom;
  }
  return size >= at + kConfiguration ? bytes[at + kDepth] : 0;
}

}  // namespace

std::optional<CafAlac> CafAlac::of(InputStream& in) {
  std::array<uint8_t, kDescriptionEnd> head;
  in.seek(0);
  if (in.read(head.data(), head.size()) != head.size()) return std::nullopt;
  if (text(head.data() + kFormat, 4) != "alac") return std::nullopt;
  constexpr std::array<int, 4> depths{16, 20, 24, 32};
  CafAlac alac;
  alac.depth = depthOf(in);
  const auto found = std::find(depths.begin(), depths.end(), alac.depth);
  if (found == depths.end()) return std::nullopt;
  alac.depthNumber = static_cast<uint8_t>(found - depths.begin() + 1);
  alac.isDepthMissing = big(head.data() + kFormatFlags, 4) == 0;
  alac.packetFrames = big(head.data() + kPacketFrames, 4);
  alac.sound = findChunk(in, "data");
  alac.packetTable = findChunk(in, "pakt");
  return alac;
}

bool CafAlac::hasTableOfNoSize(InputStream& in) {
  constexpr size_t kChunkHead = 12, kLowSize = 8;
  std::vector<uint8_t> block(size_t{1} << 16);
  in.seek(kFormat);
  if (in.read(block.data(), 4) != 4 || text(block.data(), 4) != "alac") return false;
  size_t kept = 0;  // of the block before: a head may lie across
  while (const size_t more = in.read(block.data() + kept, block.size() - kept)) {
    const std::string_view seen = text(block.data(), kept + more);
    for (size_t at = seen.find("pakt"); at != seen.npos && at + kChunkHead <= seen.size();
         at = seen.find("pakt", at + 1)) {
      if (big(block.data() + at + kLowSize, 4) == 0) return true;
    }
    kept = std::min(kChunkHead - 1, seen.size());
    std::copy_n(block.data() + seen.size() - kept, kept, block.data());
  }
  return false;
}

}  // namespace plumetta
