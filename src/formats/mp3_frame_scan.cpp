// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/mp3_frame_scan.h"

#include <algorithm>
#include <cstring>

namespace plumetta {
namespace {

constexpr size_t kId3HeaderBytes = 10;
constexpr int64_t kSmallestBitRate = 32000;  // that a file without readable headers is taken for
constexpr int64_t kUsualRate = 44100;
constexpr size_t kStepsPerReport = size_t{1} << 20;

// kbit/s by the index in the header; the first is "free" and the last forbidden.
using BitRates = int[16];
constexpr BitRates kLayer1{0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448, 0};
constexpr BitRates kLayer2{0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 0};
constexpr BitRates kLayer3{0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0};
constexpr BitRates kLowLayer1{0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256, 0};
constexpr BitRates kLowLayers2And3{0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0};
constexpr int kSampleRates[4] = {44100, 48000, 32000, 0};  // of MPEG-1; a half in MPEG-2, a quarter in 2.5

const BitRates& bitRatesOf(int version, int layer) {
  if (version != 1) return layer == 1 ? kLowLayer1 : kLowLayers2And3;
  return layer == 1 ? kLayer1 : layer == 2 ? kLayer2 : kLayer3;
}

// The next byte from `from` on that a frame may begin with; the data's size when there is none.
size_t nextMark(std::span<const uint8_t> data, size_t from) {
  const void* found = std::memchr(data.data() + from, 0xFF, data.size() - from);
  return found == nullptr ? data.size()
                          : static_cast<size_t>(static_cast<const uint8_t*>(found) - data.data());
}

size_t firstSync(std::span<const uint8_t> data, size_t from) {
  for (size_t at = nextMark(data, from); at + 1 < data.size(); at = nextMark(data, at + 1)) {
    if (isMp3Sync(data.data() + at)) return at;
  }
  return data.size();
}

// Where the audio may begin. A tag that claims more than there is says nothing about where it ends.
size_t behindTag(std::span<const uint8_t> data) {
  const size_t tag = id3TagBytes(data);
  return tag < data.size() ? tag : kId3HeaderBytes;
}

}  // namespace

Mp3FrameHeader::Mp3FrameHeader(const uint8_t* bytes) {
  const int versionBits = bytes[1] >> 3 & 3;
  const int layerBits = bytes[1] >> 1 & 3;
  padded = (bytes[2] & 2) != 0;
  mono = bytes[3] >> 6 == 3;
  if (versionBits == 1 || layerBits == 0) return;  // reserved
  version = versionBits == 3 ? 1 : versionBits == 2 ? 2 : 25;
  layer = 4 - layerBits;
  bitRate = bitRatesOf(version, layer)[bytes[2] >> 4] * 1000;
  sampleRate = kSampleRates[bytes[2] >> 2 & 3] / (version == 1 ? 1 : version == 2 ? 2 : 4);
}

int Mp3FrameHeader::frames() const {
  if (layer == 1) return 384;
  return layer == 3 && version != 1 ? 576 : 1152;
}

size_t Mp3FrameHeader::bytes() const {
  if (sampleRate < 1 || bitRate < 1) return 0;
  const auto length = static_cast<size_t>(frames() / 8 * bitRate / sampleRate);
  return layer == 1 ? length / 4 * 4 + (padded ? 4 : 0) : length + (padded ? 1 : 0);  // whole slots
}

size_t id3TagBytes(std::span<const uint8_t> data) {
  if (data.size() < kId3HeaderBytes || std::memcmp(data.data(), "ID3", 3) != 0) return 0;
  if (data[3] < 2 || data[3] > 4) return 0;
  size_t size = 0;
  for (size_t i = 6; i < kId3HeaderBytes; ++i) size = size << 7 | (data[i] & 0x7F);
  return kId3HeaderBytes + size;
}

std::optional<Mp3Scan> scanMp3Frames(std::span<const uint8_t> data, const WaveProgress& progress) {
  Mp3Scan scan;
  const size_t start = behindTag(data);
  size_t at = start < data.size() ? firstSync(data, start) : data.size();
  scan.firstFrame = at < data.size() ? at : 0;
  for (size_t steps = 1; at + Mp3FrameHeader::kBytes <= data.size(); ++steps) {
    if (steps % kStepsPerReport == 0 && !progress.report(0)) return std::nullopt;
    if (data[at] != 0xFF || (data[at + 1] & 0x20) == 0) {
      at = nextMark(data, at + 1);
      continue;
    }
    const Mp3FrameHeader header(data.data() + at);
    if (header.bytes() == 0) {
      at += 3;
      continue;
    }
    if (scan.frames == 0) scan.firstFrame = at;
    scan.frames += header.frames();
    scan.sampleRate = static_cast<uint32_t>(header.sampleRate);
    if (!header.mono) scan.channels = 2;
    at += header.bytes();
  }
  if (scan.frames == 0) {
    scan.guessed = true;
    scan.frames = static_cast<int64_t>(data.size()) * 8 / kSmallestBitRate * kUsualRate;
  }
  return scan;
}

}  // namespace plumetta
