// SPDX-License-Identifier: GPL-3.0-or-later
// The C interface of LAME. Only what is used is declared.
#include <cstdarg>

#include "formats/mp3_encoder.h"

namespace plumetta {
namespace {

struct LameFlags;  // the library's own
using Report = void(const char* format, va_list arguments);

// A set of functions as the library names them.
struct LameFunctions {
  LameFlags* (*init)();
  int (*setInSampleRate)(LameFlags*, int);
  int (*setOutSampleRate)(LameFlags*, int);
  int (*setNumChannels)(LameFlags*, int);
  int (*setMode)(LameFlags*, int);
  int (*setBitRate)(LameFlags*, int);
  int (*setWriteVbrTag)(LameFlags*, int);
  int (*setErrorReport)(LameFlags*, Report*);
  int (*initParams)(LameFlags*);
  int (*encodeInterleaved)(LameFlags*, const int16_t*, int frames, uint8_t*, int);
  int (*encode)(LameFlags*, const int16_t* left, const int16_t* right, int frames, uint8_t*, int);
  int (*flush)(LameFlags*, uint8_t*, int);
  size_t (*lametagFrame)(LameFlags*, uint8_t*, size_t);
  int (*close)(LameFlags*);

  bool resolve(const SharedLibrary& library);
};

bool LameFunctions::resolve(const SharedLibrary& library) {
  return library.resolve("lame_init", init) && library.resolve("lame_set_in_samplerate", setInSampleRate) &&
         library.resolve("lame_set_out_samplerate", setOutSampleRate) &&
         library.resolve("lame_set_num_channels", setNumChannels) &&
         library.resolve("lame_set_mode", setMode) && library.resolve("lame_set_brate", setBitRate) &&
         library.resolve("lame_set_bWriteVbrTag", setWriteVbrTag) &&
         library.resolve("lame_set_errorf", setErrorReport) &&
         library.resolve("lame_init_params", initParams) &&
         library.resolve("lame_encode_buffer_interleaved", encodeInterleaved) &&
         library.resolve("lame_encode_buffer", encode) && library.resolve("lame_encode_flush", flush) &&
         library.resolve("lame_get_lametag_frame", lametagFrame) && library.resolve("lame_close", close);
}

enum LameMode { kJointStereo = 1, kMono = 3 };

constexpr int kChunkFrames = 4 * 1152;
// The library asks for 1.25 bytes a frame that it stores and 7200 beside.
constexpr size_t kBytesBeside = 7200;

class LameEncoder final : public Mp3Encoder {
 public:
  LameEncoder(SharedLibrary library, const LameFunctions& lame) : library_(std::move(library)), lame_(lame) {}
  ~LameEncoder() override {
    if (flags_ != nullptr) lame_.close(flags_);
  }
  LameEncoder(const LameEncoder&) = delete;
  LameEncoder& operator=(const LameEncoder&) = delete;

  bool begin(const Mp3Stream& stream) override;
  size_t samplesPerChunk() const override { return static_cast<size_t>(kChunkFrames * channels_); }
  bool encode(std::span<const int16_t> samples, std::vector<uint8_t>& out) override;
  bool finish(std::vector<uint8_t>& out) override;
  std::error_code completeFile(FileSystem& files, const std::string& path) override;

 private:
  bool taken(int bytes, std::vector<uint8_t>& out) const {
    if (bytes < 0 || static_cast<size_t>(bytes) > out.size()) return false;
    out.resize(static_cast<size_t>(bytes));
    return true;
  }

  SharedLibrary library_;
  LameFunctions lame_;
  LameFlags* flags_ = nullptr;
  int channels_ = 2;
  size_t outputBytes_ = kBytesBeside;
};

bool LameEncoder::begin(const Mp3Stream& stream) {
  flags_ = lame_.init();
  if (flags_ == nullptr) return false;
  channels_ = stream.channels;
  const int growth = stream.storedRate / stream.inputRate + 1;
  outputBytes_ = static_cast<size_t>(kChunkFrames * growth) * 5 / 4 + kBytesBeside;
  lame_.setErrorReport(flags_, [](const char*, va_list) {});  // it has nobody to talk to
  return lame_.setInSampleRate(flags_, stream.inputRate) >= 0 &&
         lame_.setOutSampleRate(flags_, stream.storedRate) >= 0 &&
         lame_.setNumChannels(flags_, channels_) >= 0 &&
         lame_.setMode(flags_, channels_ == 1 ? kMono : kJointStereo) >= 0 &&
         lame_.setBitRate(flags_, stream.bitRateKbits) >= 0 && lame_.setWriteVbrTag(flags_, 1) >= 0 &&
         lame_.initParams(flags_) >= 0;
}

bool LameEncoder::encode(std::span<const int16_t> samples, std::vector<uint8_t>& out) {
  out.resize(outputBytes_);
  const auto room = static_cast<int>(out.size());
  const int frames = static_cast<int>(samples.size()) / channels_;
  const int bytes = channels_ == 1
                        ? lame_.encode(flags_, samples.data(), samples.data(), frames, out.data(), room)
                        : lame_.encodeInterleaved(flags_, samples.data(), frames, out.data(), room);
  return taken(bytes, out);
}

bool LameEncoder::finish(std::vector<uint8_t>& out) {
  out.resize(outputBytes_);
  return taken(lame_.flush(flags_, out.data(), static_cast<int>(out.size())), out);
}

std::error_code LameEncoder::completeFile(FileSystem& files, const std::string& path) {
  std::vector<uint8_t> frame(kBytesBeside);
  const size_t bytes = lame_.lametagFrame(flags_, frame.data(), frame.size());
  if (bytes == 0 || bytes > frame.size()) return {};  // some streams have no room for one
  std::error_code error;
  const auto file = files.openSpecialForWriting(path, error);  // as it stands: nothing is cut off
  if (!file) return error;
  error = file->write(frame.data(), bytes);
  const std::error_code closeError = file->close();
  return error ? error : closeError;
}

}  // namespace

std::unique_ptr<Mp3Encoder> lameEncoder(SharedLibrary library) {
  LameFunctions lame{};
  if (!lame.resolve(library)) return nullptr;
  return std::make_unique<LameEncoder>(std::move(library), lame);
}

}  // namespace plumetta
