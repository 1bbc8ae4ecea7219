// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/clipboard_image.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "formats/wav_reader.h"

namespace plumetta {
namespace {

constexpr size_t kHeaderBytes = 48;
constexpr uint32_t kDeclaredFormatBytes =
    20;  // four more than the fields need; kept for programs that expect them
constexpr uint32_t kBytesBehindRiffSize = 40;
constexpr double kFullScale32 = 2147483647.0;

void putText(uint8_t*& out, const char* text) { out = std::copy_n(text, 4, out); }

void putLittle(uint8_t*& out, uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) *out++ = static_cast<uint8_t>(value >> 8 * i);
}

// Toward zero; beyond the type's range its end, and 0 for what is not a number.
template <class Integer>
Integer truncated(double value) {
  using Limits = std::numeric_limits<Integer>;
  if (std::isnan(value)) return 0;
  return static_cast<Integer>(std::clamp<double>(value, Limits::min(), Limits::max()));
}

bool holdsFloats(const CWave& wave) {
  const int bits = wave.bitsPerSample();
  return bits == 64 || (bits == 32 && wave.formatTag() == kFormatFloat);
}

void putHeader(uint8_t*& out, const CWave& wave, uint64_t dataBytes) {
  const auto channels = static_cast<uint64_t>(wave.channels());
  const auto bits = static_cast<uint64_t>(wave.bitsPerSample());
  const uint64_t blockAlign = bits / 8 * channels;
  putText(out, "RIFF");
  putLittle(out, dataBytes + kBytesBehindRiffSize, 4);
  putText(out, "WAVE");
  putText(out, "fmt ");
  putLittle(out, kDeclaredFormatBytes, 4);
  putLittle(out, holdsFloats(wave) ? kFormatFloat : kFormatPcm, 2);
  putLittle(out, channels, 2);
  putLittle(out, wave.sampleRate(), 4);
  putLittle(out, blockAlign * wave.sampleRate(), 4);
  putLittle(out, blockAlign, 2);
  putLittle(out, bits, 2);
  putLittle(out, 0, 4);
  putText(out, "data");
  putLittle(out, dataBytes, 4);
}

void putSample(uint8_t*& out, float sample, int bits, bool floats) {
  const double s = sample;
  switch (bits) {
    case 8:
      putLittle(out, truncated<uint8_t>(s * 127.0 + 128.5), 1);
      break;
    case 16:
      putLittle(out, static_cast<uint16_t>(truncated<int16_t>(s * 32767.0)), 2);
      break;
    case 24:
      putLittle(out, static_cast<uint32_t>(truncated<int32_t>(s * kFullScale32)) >> 8, 3);
      break;
    case 32:
      putLittle(out,
                floats ? std::bit_cast<uint32_t>(sample)
                       : static_cast<uint32_t>(truncated<int32_t>(s * kFullScale32)),
                4);
      break;
    default:
      putLittle(out, std::bit_cast<uint64_t>(s), 8);
  }
}

// Bytes in memory, read like a file.
class ImageFile : public File {
 public:
  explicit ImageFile(std::string_view bytes) : bytes_(bytes) {}

  size_t read(void* destination, size_t bytes, std::error_code&) override {
    const size_t part = std::min(bytes, bytes_.size() - position_);
    if (part > 0) std::memcpy(destination, bytes_.data() + position_, part);
    position_ += part;
    return part;
  }
  std::error_code write(const void*, size_t) override {
    return std::make_error_code(std::errc::operation_not_permitted);
  }
  std::error_code seek(uint64_t offset) override {
    position_ = static_cast<size_t>(std::min<uint64_t>(offset, bytes_.size()));
    return {};
  }
  uint64_t size() const override { return bytes_.size(); }
  std::error_code sync() override { return {}; }
  std::error_code close() override { return {}; }

 private:
  std::string_view bytes_;
  size_t position_ = 0;
};

}  // namespace

size_t clipboardImageBytes(const CWave& wave, int32_t frames) {
  const int64_t frameBytes = int64_t{wave.bitsPerSample() / 8} * wave.channels();
  const int64_t bytes = frames * frameBytes + static_cast<int64_t>(kHeaderBytes);
  // Toolkits count these bytes in a signed 32-bit number.
  return bytes <= std::numeric_limits<int32_t>::max() ? static_cast<size_t>(bytes) : 0;
}

void writeClipboardImage(const CWave& wave, int32_t frames, uint8_t* image) {
  putHeader(image, wave, clipboardImageBytes(wave, frames) - kHeaderBytes);
  const size_t count = static_cast<size_t>(frames) * static_cast<size_t>(wave.channels());
  const bool floats = holdsFloats(wave);
  const float* samples = wave.samples();
  for (size_t i = 0; i < count; ++i) putSample(image, samples[i], wave.bitsPerSample(), floats);
}

LoadResult readClipboardImage(std::string_view image, CWave& wave) {
  if (image.size() < 12 || image.substr(0, 4) != "RIFF" || image.substr(8, 4) != "WAVE") {
    return LoadResult::failure("It is no RIFF WAVE image.");
  }
  ImageFile file(image);
  return readWav(file, wave);
}

}  // namespace plumetta
