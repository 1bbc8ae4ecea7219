// SPDX-License-Identifier: GPL-3.0-or-later
// The interface of encoder DLLs that BladeEnc began and LAME's DLL extended.
#include <algorithm>

#include "formats/mp3_encoder.h"

namespace plumetta {
namespace {

constexpr uint32_t kSuccess = 0;
constexpr uint32_t kExtendedConfiguration = 256;
constexpr uint32_t kConfigurationVersion = 1;

enum BladeMode : int32_t { kJointStereo = 1, kMono = 3 };
enum BladeMpegVersion : uint32_t { kMpeg2 = 0, kMpeg1 = 1 };
constexpr int32_t kNoPreset = -1;
constexpr int32_t kConstantBitRate = -1;  // as a method of varying it
constexpr uint8_t kQuality = 3;           // 0 is best and slowest; what LAME takes by itself
constexpr int kLowestMpeg1Rate = 32000;

#pragma pack(push, 1)
struct BladeConfiguration {
  uint32_t kind = kExtendedConfiguration;
  uint32_t structureVersion = kConfigurationVersion;
  uint32_t structureSize;
  uint32_t sampleRate;
  uint32_t storedSampleRate;  // 0: the encoder's choice
  int32_t mode;
  uint32_t bitRateKbits;
  uint32_t maximumBitRateKbits = 0;  // of a varying one
  int32_t preset = kNoPreset;
  uint32_t mpegVersion;
  uint32_t psychoacousticModel = 0;
  uint32_t emphasis = 0;
  int32_t isPrivate = 0;
  int32_t hasChecksum = 0;
  int32_t isCopyrighted = 0;
  int32_t isOriginal = 1;
  int32_t writeVbrHeader = 1;
  int32_t varyBitRate = 0;
  int32_t varyingQuality = 0;
  uint32_t averageBitsPerSecond = 0;
  int32_t varyingMethod = kConstantBitRate;
  int32_t noReservoir = 0;
  int32_t strictIso = 0;
  uint16_t quality = kQuality | static_cast<uint16_t>(static_cast<uint8_t>(~kQuality) << 8);  // valid so
  uint8_t reserved[237] = {};
};
#pragma pack(pop)
static_assert(sizeof(BladeConfiguration) == 331);

// The library's numbers are 32-bit, its stream handle too; samples are counted over all channels.
struct BladeFunctions {
  uint32_t (*initStream)(BladeConfiguration*, uint32_t* samplesPerChunk, uint32_t* outputBytes,
                         uint32_t* stream);
  uint32_t (*encodeChunk)(uint32_t stream, uint32_t samples, const int16_t*, uint8_t*, uint32_t* bytes);
  uint32_t (*deinitStream)(uint32_t stream, uint8_t*, uint32_t* bytes);
  uint32_t (*closeStream)(uint32_t stream);
  void (*version)(void*);  // tells an interface of this kind from others; its numbers are of no use here
  uint32_t (*writeVbrHeader)(const char* path);

  bool resolve(const SharedLibrary& library);
};

bool BladeFunctions::resolve(const SharedLibrary& library) {
  return library.resolve("beInitStream", initStream) && library.resolve("beEncodeChunk", encodeChunk) &&
         library.resolve("beDeinitStream", deinitStream) && library.resolve("beCloseStream", closeStream) &&
         library.resolve("beVersion", version) && library.resolve("beWriteVBRHeader", writeVbrHeader);
}

class BladeEncoder final : public Mp3Encoder {
 public:
  BladeEncoder(SharedLibrary library, const BladeFunctions& blade)
      : library_(std::move(library)), blade_(blade) {}
  ~BladeEncoder() override {
    if (open_) blade_.closeStream(stream_);
  }
  BladeEncoder(const BladeEncoder&) = delete;
  BladeEncoder& operator=(const BladeEncoder&) = delete;

  bool begin(const Mp3Stream& stream) override;
  size_t samplesPerChunk() const override { return samplesPerChunk_; }
  bool encode(std::span<const int16_t> samples, std::vector<uint8_t>& out) override;
  bool finish(std::vector<uint8_t>& out) override;
  std::error_code completeFile(FileSystem& files, const std::string& path) override;

 private:
  SharedLibrary library_;
  BladeFunctions blade_;
  uint32_t stream_ = 0;
  bool open_ = false;
  uint32_t samplesPerChunk_ = 0;
  uint32_t outputBytes_ = 0;
};

bool BladeEncoder::begin(const Mp3Stream& stream) {
  // What no encoder asks for, against a library that is none.
  constexpr uint32_t kLargest = 1 << 24;
  BladeConfiguration configuration;
  configuration.structureSize = sizeof configuration;
  configuration.sampleRate = static_cast<uint32_t>(stream.inputRate);
  configuration.storedSampleRate = static_cast<uint32_t>(stream.storedRate);
  configuration.mode = stream.channels == 1 ? kMono : kJointStereo;
  configuration.bitRateKbits = static_cast<uint32_t>(stream.bitRateKbits);
  configuration.mpegVersion = stream.storedRate >= kLowestMpeg1Rate ? kMpeg1 : kMpeg2;
  open_ = blade_.initStream(&configuration, &samplesPerChunk_, &outputBytes_, &stream_) == kSuccess;
  const auto channels = static_cast<uint32_t>(stream.channels);
  return open_ && samplesPerChunk_ >= channels && samplesPerChunk_ % channels == 0 &&
         samplesPerChunk_ <= kLargest && outputBytes_ > 0 && outputBytes_ <= kLargest;
}

bool BladeEncoder::encode(std::span<const int16_t> samples, std::vector<uint8_t>& out) {
  out.resize(outputBytes_);
  uint32_t bytes = 0;
  const auto count = static_cast<uint32_t>(samples.size());
  const bool done = blade_.encodeChunk(stream_, count, samples.data(), out.data(), &bytes) == kSuccess;
  out.resize(std::min(bytes, outputBytes_));
  return done && bytes <= outputBytes_;
}

bool BladeEncoder::finish(std::vector<uint8_t>& out) {
  out.resize(outputBytes_);
  uint32_t bytes = 0;
  const bool done = blade_.deinitStream(stream_, out.data(), &bytes) == kSuccess;
  out.resize(std::min(bytes, outputBytes_));
  open_ = false;
  return blade_.closeStream(stream_) == kSuccess && done && bytes <= outputBytes_;
}

// The library opens the file itself. One that can't write the header leaves a file that is whole without it.
std::error_code BladeEncoder::completeFile(FileSystem&, const std::string& path) {
  blade_.writeVbrHeader(path.c_str());
  return {};
}

}  // namespace

std::unique_ptr<Mp3Encoder> bladeEncoder(SharedLibrary library) {
  BladeFunctions blade{};
  if (!blade.resolve(library)) return nullptr;
  return std::make_unique<BladeEncoder>(std::move(library), blade);
}

}  // namespace plumetta
