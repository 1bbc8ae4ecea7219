// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/alac_packets.h"

#include <algorithm>
#include <vector>

#include "formats/file_view.h"
#include "formats/sample_codec.h"

namespace plumetta {
namespace {

constexpr uint64_t kTableHeader = 24;  // packets, frames, and the frames to leave out at both ends
constexpr uint64_t kEditCount = 4;     // ahead of the packets
constexpr uint64_t kMostPacketFrames = 1 << 16;

enum Element : uint32_t { kSingle = 0, kPair = 1, kLowFrequency = 3 };

class BitReader {
 public:
  explicit BitReader(const std::vector<uint8_t>& bytes) : bytes_(bytes) {}

  uint64_t left() const { return 8 * bytes_.size() - std::min(position_, 8 * bytes_.size()); }
  // At most 32 bits; zeros behind the end.
  uint32_t read(int count) {
    constexpr size_t kWindowBytes = 5;
    uint64_t window = 0;
    for (size_t i = position_ / 8; i < position_ / 8 + kWindowBytes; ++i) {
      window = window << 8 | (i < bytes_.size() ? bytes_[i] : 0u);
    }
    const int behind = 8 * static_cast<int>(kWindowBytes) - static_cast<int>(position_ % 8) - count;
    position_ += static_cast<size_t>(count);
    return static_cast<uint32_t>(window >> behind & ((uint64_t{1} << count) - 1));
  }

 private:
  const std::vector<uint8_t>& bytes_;
  size_t position_ = 0;
};

// Where the samples of one packet go.
struct Place {
  CWave& wave;
  int32_t firstFrame;
  int32_t frames;
  int depth;
};

// The samples of `count` channels side by side, from channel `first` on.
void readSamples(BitReader& bits, const Place& place, int first, int count) {
  static const BlockDecoder decode = blockDecoder(Encoding::pcm32, SignType::isSigned);
  for (int32_t f = 0; f < place.frames; ++f) {
    for (int c = first; c < first + count; ++c) {
      const auto sample = static_cast<int32_t>(bits.read(place.depth) << (32 - place.depth));
      float value;
      decode(reinterpret_cast<const uint8_t*>(&sample), &value, 1);
      place.wave.setSample(place.firstFrame + f, c, value);
    }
  }
}

// Up to the first element that is coded.
void readPlainElements(const std::vector<uint8_t>& bytes, const Place& place) {
  BitReader bits(bytes);
  for (int channel = 0; channel < place.wave.channels();) {
    const uint32_t element = bits.read(3);
    if (element != kSingle && element != kPair && element != kLowFrequency) return;
    const int count = element == kPair ? 2 : 1;
    bits.read(4 + 12);  // which of its kind, and zeros
    const bool hasLength = bits.read(1) == 1;
    bits.read(2);  // meant for coded samples
    const bool isPlain = bits.read(1) == 1;
    if (!isPlain || channel + count > place.wave.channels()) return;
    if (hasLength && bits.read(32) != static_cast<uint32_t>(place.frames)) return;
    if (bits.left() < static_cast<uint64_t>(place.frames) * static_cast<uint64_t>(count * place.depth))
      return;
    readSamples(bits, place, channel, count);
    channel += count;
  }
}

// Each packet's bytes, seven bits of the number a byte, the upper ones first.
std::vector<uint64_t> packetSizes(InputStream& in, const CafAlac::Chunk& table, size_t most) {
  std::vector<uint64_t> sizes;
  in.seek(table.begin + kTableHeader);
  uint64_t size = 0;
  uint8_t byte;
  for (uint64_t i = kTableHeader; i < table.size && sizes.size() < most && in.read(&byte, 1) == 1; ++i) {
    size = size << 7 | (byte & 0x7F);
    if ((byte & 0x80) != 0) continue;
    sizes.push_back(size);
    size = 0;
  }
  return sizes;
}

}  // namespace

bool rereadPlainAlacPackets(File& file, const CafAlac& alac, CWave& wave) {
  if (alac.depth <= 16 || alac.packetFrames == 0 || alac.packetFrames > kMostPacketFrames) return true;
  const auto frames = static_cast<uint64_t>(wave.frames());
  const auto frameBits = static_cast<uint64_t>(wave.channels() * alac.depth);
  const size_t packets = static_cast<size_t>((frames + alac.packetFrames - 1) / alac.packetFrames);
  FileView view(file, 0);
  InputStream in(view);
  const uint64_t end = alac.sound.begin + alac.sound.size;
  uint64_t position = alac.sound.begin + kEditCount, first = 0;
  for (const uint64_t size : packetSizes(in, alac.packetTable, packets)) {
    if (position > end || size > end - position) return true;
    const uint64_t count = std::min(alac.packetFrames, frames - first);
    if (8 * size >= count * frameBits) {
      std::vector<uint8_t> bytes(static_cast<size_t>(size));
      in.seek(position);
      bytes.resize(in.read(bytes.data(), bytes.size()));
      readPlainElements(bytes, {wave, static_cast<int32_t>(first), static_cast<int32_t>(count), alac.depth});
      if (!wave.progress.report(1.0f)) return false;
    }
    position += size;
    first += count;
  }
  return true;
}

}  // namespace plumetta
