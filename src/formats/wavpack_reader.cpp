// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/wavpack_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string_view>

#include "formats/frame_sink.h"
#include "formats/wavpack_library.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

constexpr int kBlockSamples = 1024;

using Block = std::array<int32_t, kBlockSamples>;
using BlockConverter = void (*)(const Block& words, float* floats, size_t count);

// ---- From the file's width to floats --------------------------------------------------------------------

// Integers stand in their whole bytes: 12 bits fill the upper part of 16, 20 bits that of 24.
void convert8(const Block& words, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i) floats[i] = static_cast<float>(words[i]) * (1.0f / 128.0f);
}

void convert16(const Block& words, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i) floats[i] = static_cast<float>(words[i]) / 32767.5f;
}

void convert24(const Block& words, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i) floats[i] = static_cast<float>(words[i]) / 32767.5f / 256.0f;
}

void convert32(const Block& words, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i) floats[i] = static_cast<float>(words[i]) * (1.0f / 2147483648.0f);
}

void convertFloat(const Block& words, float* floats, size_t count) {
  for (size_t i = 0; i < count; ++i) floats[i] = std::bit_cast<float>(words[i]);
}

struct Width {
  int bits;  // of the buffer
  uint16_t formatTag;
  BlockConverter convert;
};

Width widthOf(int fileBits, int mode) {
  if ((mode & kWavpackModeFloat) != 0) return {32, kFormatFloat, convertFloat};
  if (fileBits <= 8) return {8, kFormatPcm, convert8};
  if (fileBits <= 16) return {16, kFormatPcm, convert16};
  if (fileBits <= 24) return {24, kFormatPcm, convert24};
  return {32, kFormatPcm, convert32};
}

// ---- The file -------------------------------------------------------------------------------------------

class WavpackFile {
 public:
  WavpackFile(const WavpackLibrary& library, const std::string& path) : library_(library) {
    const int utf8 = library.version() >= kWavpackVersion5 ? kWavpackOpenUtf8 : 0;
    context_ = library.openFileInput(path.c_str(), error_.data(), kWavpackOpenTags | utf8, 0);
    error_.back() = '\0';
  }
  ~WavpackFile() {
    if (context_ != nullptr) library_.closeFile(context_);
  }
  WavpackFile(const WavpackFile&) = delete;
  WavpackFile& operator=(const WavpackFile&) = delete;

  bool isOpen() const { return context_ != nullptr; }
  std::string errorText() const { return error_.data(); }
  uint32_t frames() const { return library_.numSamples(context_); }
  int bits() const { return library_.bitsPerSample(context_); }
  int channels() const { return library_.numChannels(context_); }
  uint32_t sampleRate() const { return library_.sampleRate(context_); }
  int mode() const { return library_.mode(context_); }
  bool foundDamage() const { return library_.numErrors(context_) > 0; }
  uint32_t unpack(Block& words, uint32_t frames) {
    return library_.unpackSamples(context_, words.data(), frames);
  }

 private:
  const WavpackLibrary& library_;
  WavpackContext* context_ = nullptr;
  std::array<char, kWavpackErrorBytes> error_{};
};

enum class Ending { complete, noRoom, cancelled };

// `claimedFrames` serves the progress alone; 0 when the file doesn't tell.
Ending readFrames(WavpackFile& file, int channels, BlockConverter convert, int64_t claimedFrames,
                  FrameSink& sink, const WaveProgress& progress) {
  Block words;
  const auto blockFrames = static_cast<uint32_t>(kBlockSamples / channels);
  while (true) {
    const uint32_t frames = std::min(file.unpack(words, blockFrames), blockFrames);
    if (frames == 0) return Ending::complete;
    float* floats = sink.room(frames);
    if (floats == nullptr) return Ending::noRoom;
    convert(words, floats, static_cast<size_t>(frames) * static_cast<size_t>(channels));
    sink.added(frames);
    const double fraction =
        claimedFrames > 0 ? static_cast<double>(sink.frames()) / static_cast<double>(claimedFrames) : 0;
    if (!progress.report(static_cast<float>(std::min(fraction, 1.0)))) return Ending::cancelled;
  }
}

// What the system has against the file; the library would only say that it can't be opened, and would wait
// for a pipe.
std::error_code checkReadable(FileSystem& files, const std::string& path, uint64_t& bytes) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (file) bytes = file->size();
  return error;
}

}  // namespace

Likeness probeWavpack(const FileHead& head) {
  constexpr std::string_view blockId = "wvpk";
  if (head.has(0, blockId)) return Likeness::certain;
  // Behind something else, a tag or a header: the library looks for its first block.
  const auto found = std::search(head.bytes.begin(), head.bytes.end(), blockId.begin(), blockId.end());
  return found != head.bytes.end() && head.extension == "wv" ? Likeness::possible : Likeness::none;
}

LoadResult loadWavpack(FileSystem& files, const std::string& path, CWave& wave) {
  WavpackLibrary library;
  if (!library.load()) return LoadResult::message("Unable to find wavpackdll.dll");
  uint64_t bytes = 0;
  if (const auto error = checkReadable(files, path, bytes)) return LoadResult::failure(error.message());
  WavpackFile file(library, absolutePath(path));
  if (!file.isOpen()) return LoadResult::failure("The WavPack library says: " + file.errorText());
  const uint32_t claimed = file.frames();
  const int64_t frames = claimed == kWavpackUnknownLength ? 0 : int64_t{claimed};
  if (frames > kMaxFrames) return LoadResult::tooLong();
  const int channels = file.channels();
  const int mode = file.mode();
  const Width width = widthOf(file.bits(), mode);
  FrameSink sink(wave);
  LoadResult result = sink.begin(file.sampleRate(), channels, width.bits, width.formatTag, frames, bytes);
  if (result.status != LoadStatus::loaded) return result;
  const Ending ending = readFrames(file, channels, width.convert, frames, sink, wave.progress);
  if (ending == Ending::cancelled) return {LoadStatus::cancelled, {}, {}, {}};
  if (ending == Ending::noRoom) return sink.refusal();
  sink.end();
  if (sink.frames() < frames || file.foundDamage()) {
    result.warnings.push_back("The file is damaged: only the audio that is sound was loaded.");
  }
  if ((mode & kWavpackModeValidTag) != 0) {
    result.textKinds.push_back((mode & kWavpackModeApeTag) != 0 ? "APEv2" : "ID3v1");
  }
  wave.setFileName(path);
  return result;
}

}  // namespace plumetta
