// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/sndfile_probes.h"

#include <string_view>

namespace plumetta {
namespace {

using namespace std::string_view_literals;

constexpr uint64_t kUnknownSize32 = 0xFFFFFFFF;  // written ahead of a length that nobody knew yet
constexpr size_t kOggPacket = 28;                // of the first page, which holds one packet alone

Likeness certainIf(bool condition) { return condition ? Likeness::certain : Likeness::none; }

// An unsigned number of `count` bytes, its offset from where the audio begins; 0 beyond the head.
uint64_t number(const FileHead& head, size_t offset, size_t count, bool bigEndian) {
  const std::vector<uint8_t>& bytes = head.audio();
  if (bytes.size() < offset + count) return 0;
  uint64_t value = 0;
  for (size_t i = 0; i < count; ++i) {
    value = value << 8 | bytes[offset + (bigEndian ? i : count - 1 - i)];
  }
  return value;
}

}  // namespace

Likeness probeAiff(const FileHead& head) {
  return certainIf(head.audioHas(0, "FORM") && (head.audioHas(8, "AIFF") || head.audioHas(8, "AIFC")));
}

Likeness probeAmigaIff(const FileHead& head) {
  return certainIf(head.has(0, "FORM") && (head.has(8, "8SVX") || head.has(8, "16SV")));
}

Likeness probeAu(const FileHead& head) { return certainIf(head.has(0, ".snd") || head.has(0, "dns.")); }

Likeness probeVoc(const FileHead& head) { return certainIf(head.has(0, "Creative Voice File\x1A")); }

Likeness probeCaf(const FileHead& head) { return certainIf(head.has(0, "caff\0\1"sv)); }

Likeness probeW64(const FileHead& head) {
  return certainIf(head.has(0, "riff\x2E\x91\xCF\x11\xA5\xD6\x28\xDB\x04\xC1\0\0"sv));
}

Likeness probeOpus(const FileHead& head) {
  return certainIf(head.has(0, "OggS") && head.has(kOggPacket, "OpusHead"));
}

uint64_t formBytes(const FileHead& head) {
  const uint64_t size = number(head, 4, 4, true);
  return size == 0 || size == kUnknownSize32 ? 0 : 8 + size;
}

uint64_t auBytes(const FileHead& head) {
  const bool big = head.has(0, ".snd");
  const uint64_t size = number(head, 8, 4, big);
  return size == 0 || size == kUnknownSize32 ? 0 : number(head, 4, 4, big) + size;
}

uint64_t amigaSoundBytes(const FileHead& head) {
  constexpr uint64_t kFormHeader = 12, kChunkHeader = 8;
  for (uint64_t chunk = kFormHeader; chunk + kChunkHeader <= head.bytes.size();) {
    const uint64_t size = number(head, chunk + 4, 4, true);
    if (head.has(chunk, "BODY")) return size;
    chunk += kChunkHeader + size + size % 2;
  }
  return 0;
}

uint64_t cafBytes(const FileHead& head) {
  constexpr uint64_t kFileHeader = 8, kChunkHeader = 12;
  for (uint64_t chunk = kFileHeader; chunk + kChunkHeader <= head.bytes.size();) {
    const uint64_t size = number(head, chunk + 4, 8, true);
    if (size >= uint64_t{1} << 62) return 0;  // -1: up to the end of the file
    if (head.has(chunk, "data")) return chunk + kChunkHeader + size;
    chunk += kChunkHeader + size;
  }
  return 0;
}

uint64_t w64Bytes(const FileHead& head) { return number(head, 16, 8, false); }

}  // namespace plumetta
