// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/voc_file.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "formats/frame_sink.h"
#include "formats/sndfile_kind.h"

namespace plumetta {
namespace {

constexpr std::string_view kMagic{"Creative Voice File\x1A", 20};
constexpr uint64_t kHeaderBytes = 26;
constexpr uint16_t kVersion = 0x0114;
// A block's size has 24 bits; this many bytes of sound fit, in whole frames of any layout.
constexpr int64_t kBlockBytes = 0xFFFF00;
// A widespread program counts four bytes for the twelve of a sound block's header, in files of one block.
constexpr uint64_t kUncountedBytes = 8;
constexpr int64_t kTurnFrames = int64_t{1} << 16;  // between two reports

enum Block : uint8_t {
  kEnd = 0,
  kSound = 1,
  kContinuation = 2,
  kSilence = 3,
  kMarker = 4,
  kText = 5,
  kRepeat = 6,
  kRepeatEnd = 7,
  kExtended = 8,
  kNewSound = 9,
};

struct VocFormat {
  uint32_t rate = 0;
  int channels = 1;
  int bits = 8;
  uint16_t codec = 0;

  bool operator==(const VocFormat&) const = default;
};

struct CodecRow {
  uint16_t codec;
  int bits;
  Encoding encoding;
  SignType signType;
};
constexpr CodecRow kCodecs[] = {{0, 8, Encoding::pcm8, SignType::isUnsigned},
                                {4, 16, Encoding::pcm16, SignType::isSigned},
                                {6, 8, Encoding::aLaw, SignType::isSigned},
                                {7, 8, Encoding::muLaw, SignType::isSigned}};

const CodecRow* codecOf(const VocFormat& format) {
  const auto found = std::find_if(std::begin(kCodecs), std::end(kCodecs), [&](const CodecRow& row) {
    return row.codec == format.codec && row.bits == format.bits;
  });
  return found == std::end(kCodecs) ? nullptr : &*found;
}

// The oldest blocks name a rate by the microseconds of a frame.
uint32_t rateOfMicroseconds(uint8_t constant) { return 1000000u / (256u - constant); }

class VocLoad {
 public:
  VocLoad(InputStream& in, CWave& wave) : in_(in), wave_(wave), sink_(wave) {}

  LoadResult run() {
    while (in_.remaining() > 0 && step()) {
    }
    if (result_.status != LoadStatus::loaded) return std::move(result_);
    if (!format_) return LoadResult::failure("There is no sound in this Creative VOC file.");
    sink_.end();
    for (Marker& marker : markers_) wave_.markers.append(std::move(marker));
    if (loop_) wave_.loops.add(*loop_);
    wave_.markers.clamp(wave_.frames() - 1);
    return std::move(result_);
  }

 private:
  // One block; false behind the last one.
  bool step() {
    uint8_t type = 0, low = 0;
    uint16_t high = 0;
    if (!in_.readLittle(type) || type == kEnd) return false;
    if (!in_.readLittle(low) || !in_.readLittle(high)) return truncated();
    uint64_t claimed = uint64_t{high} << 8 | low;
    if (type == kNewSound && in_.remaining() == claimed + kUncountedBytes + 1) claimed += kUncountedBytes;
    const uint64_t size = std::min(claimed, in_.remaining());
    const uint64_t next = in_.position() + size;
    const bool goesOn = takeBlock(type, size);
    in_.seek(next);
    if (size < claimed) return truncated();
    return goesOn;
  }

  bool takeBlock(uint8_t type, uint64_t size) {
    switch (type) {
      case kSound:
        return size >= 2 && takeOldSound(size - 2);
      case kContinuation:
        return takeFrames(size);
      case kSilence:
        return takeSilence();
      case kMarker:
        return takeMarker();
      case kText:
        if (result_.textKinds.empty()) result_.textKinds.push_back("text blocks");
        return true;
      case kRepeat:
        repeatFrom_ = sink_.frames();
        return true;
      case kRepeatEnd:
        takeRepeat();
        return true;
      case kExtended:
        return takeExtended();
      case kNewSound:
        return size >= 12 && takeNewSound(size - 12);
      default:
        return true;
    }
  }

  bool takeOldSound(uint64_t bytes) {
    uint8_t constant = 0, codec = 0;
    in_.readLittle(constant);
    in_.readLittle(codec);
    VocFormat format{rateOfMicroseconds(constant), 1, 8, codec};
    if (codec == 4) format.bits = 16;
    if (extended_) {
      format.rate = extended_->rate;
      format.channels = extended_->channels;
      extended_.reset();
    }
    return begin(format) && takeFrames(bytes);
  }

  // Says more about the sound block behind it.
  bool takeExtended() {
    uint16_t constant = 0;
    uint8_t codec = 0, stereo = 0;
    in_.readLittle(constant);
    in_.readLittle(codec);
    in_.readLittle(stereo);
    const int channels = stereo == 1 ? 2 : 1;
    extended_ = {256000000u / (65536u - constant) / static_cast<uint32_t>(channels), channels, 8, codec};
    return true;
  }

  bool takeNewSound(uint64_t bytes) {
    VocFormat format;
    uint8_t bits = 0, channels = 0;
    in_.readLittle(format.rate);
    in_.readLittle(bits);
    in_.readLittle(channels);
    in_.readLittle(format.codec);
    in_.skip(4);
    format.bits = bits;
    format.channels = channels;
    return begin(format) && takeFrames(bytes);
  }

  bool begin(const VocFormat& format) {
    if (format_) {
      if (*format_ == format) return true;
      result_.warnings.push_back(
          "The sound changes its format within the file: only what is before was loaded.");
      return false;
    }
    codec_ = codecOf(format);
    if (codec_ == nullptr) {
      result_ = LoadResult::failure("The encoding of this Creative VOC file is not supported.");
      return false;
    }
    // A compressed byte is worth the bits that it stands for.
    const int bits = codec_->encoding == Encoding::pcm8 ? 8 : 16;
    LoadResult begun =
        sink_.begin(format.rate, format.channels, bits, kFormatPcm,
                    static_cast<int64_t>(in_.remaining()) / std::max(format.channels, 1), in_.size());
    begun.textKinds = std::move(result_.textKinds);
    result_ = std::move(begun);
    if (result_.status == LoadStatus::loaded) format_ = format;
    return format_.has_value();
  }

  bool takeFrames(uint64_t bytes) {
    if (!format_) return false;
    const SampleFormat sample{codec_->encoding, ByteOrder::little, codec_->signType};
    const auto frameBytes = static_cast<uint64_t>(bytesPerSample(codec_->encoding) * format_->channels);
    for (auto left = static_cast<int64_t>(bytes / frameBytes); left > 0;) {
      const int64_t wanted = std::min(left, kTurnFrames);
      float* const room = makeRoom(wanted);
      int64_t come = 0;
      if (room == nullptr) return false;
      decodeSamples(in_, sample, room, wanted, format_->channels, {}, come);
      sink_.added(come);
      if (come < wanted) return false;
      left -= wanted;
    }
    return true;
  }

  bool takeSilence() {
    uint16_t length = 0;
    if (!format_ || !in_.readLittle(length))
      return true;  // silence ahead of all sound has no rate to count in
    const int64_t frames = int64_t{length} + 1;
    float* const room = makeRoom(frames);
    if (room == nullptr) return false;
    std::fill_n(room, frames * format_->channels, 0.0f);
    sink_.added(frames);
    return true;
  }

  // Null when there is none or the person cancelled.
  float* makeRoom(int64_t frames) {
    const float done = static_cast<float>(in_.position()) / static_cast<float>(in_.size());
    if (!wave_.progress.report(done)) {
      result_ = {LoadStatus::cancelled, {}, {}, {}};
      return nullptr;
    }
    float* const room = sink_.room(frames);
    if (room == nullptr) result_ = sink_.refusal();
    return room;
  }

  bool takeMarker() {
    uint16_t id = 0;
    if (!in_.readLittle(id)) return true;
    Marker marker;
    marker.id = id;
    marker.position = static_cast<int32_t>(sink_.frames());
    markers_.push_back(std::move(marker));
    return true;
  }

  void takeRepeat() {
    const int64_t end = sink_.frames() - 1;
    if (loop_ || !repeatFrom_ || *repeatFrom_ >= end) return;
    loop_.emplace();
    loop_->start = static_cast<int32_t>(*repeatFrom_);
    loop_->end = static_cast<int32_t>(end);
  }

  bool truncated() {
    if (result_.status == LoadStatus::loaded && result_.warnings.empty()) {
      result_.warnings.push_back("The file is truncated: only the audio that is there was loaded.");
    }
    return false;
  }

  InputStream& in_;
  CWave& wave_;
  FrameSink sink_;
  LoadResult result_;
  const CodecRow* codec_ = nullptr;
  std::optional<VocFormat> format_, extended_;
  std::optional<int64_t> repeatFrom_;
  std::vector<Marker> markers_;
  std::optional<LoopRecord> loop_;
};

void beginBlock(OutputStream& out, Block type, int64_t size) {
  out.writeLittle(static_cast<uint8_t>(type));
  out.writeLittle(static_cast<uint8_t>(size));
  out.writeLittle(static_cast<uint16_t>(size >> 8));
}

void writeSoundHeader(OutputStream& out, const CWave& wave, const CodecRow& codec) {
  out.writeLittle(wave.sampleRate());
  out.writeLittle(static_cast<uint8_t>(codec.bits));
  out.writeLittle(static_cast<uint8_t>(wave.channels()));
  out.writeLittle(codec.codec);
  out.writeLittle(uint32_t{0});
}

// False when the person cancelled.
bool writeVoc(OutputStream& out, const CWave& wave, const CodecRow& codec) {
  out.write(kMagic);
  out.writeLittle(static_cast<uint16_t>(kHeaderBytes));
  out.writeLittle(kVersion);
  out.writeLittle(static_cast<uint16_t>(~kVersion + 0x1234));
  const SampleFormat sample{codec.encoding, ByteOrder::little, codec.signType};
  const int frameBytes = bytesPerSample(codec.encoding) * wave.channels();
  const int64_t blockFrames = kBlockBytes / frameBytes;
  int64_t done = 0;
  do {
    const int64_t block = std::min<int64_t>(blockFrames, wave.frames() - done);
    const bool first = done == 0;
    beginBlock(out, first ? kNewSound : kContinuation, block * frameBytes + (first ? 12 : 0));
    if (first) writeSoundHeader(out, wave, codec);
    const float* samples = wave.samples() + done * wave.channels();
    for (int64_t left = block; left > 0; left -= std::min(left, kTurnFrames)) {
      const int64_t turn = std::min(left, kTurnFrames);
      encodeSamples(out, sample, samples, turn, wave.channels(), {});
      samples += turn * wave.channels();
      done += turn;
      const double fraction = static_cast<double>(done) / wave.frames();
      if (!wave.progress.report(static_cast<float>(fraction))) return false;
    }
  } while (done < wave.frames());
  out.writeLittle(static_cast<uint8_t>(kEnd));
  return true;
}

}  // namespace

LoadResult loadVoc(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  InputStream in(*file);
  uint16_t firstBlock = 0;
  in.seek(kMagic.size());
  if (!in.readLittle(firstBlock)) return LoadResult::failure("There is no sound in this Creative VOC file.");
  in.seek(firstBlock);
  LoadResult result = VocLoad(in, wave).run();
  wave.setFileName(path);
  return result;
}

SaveResult saveVoc(FileSystem& files, const std::string& path, const CWave& wave,
                   const SaveOptions& options) {
  if (std::string reason = refusalOf(kVoc, wave); !reason.empty()) return SaveResult::failure(reason);
  const Encoding encoding = storedEncoding(kVoc, wave).encoding;
  const CodecRow& codec = *std::find_if(std::begin(kCodecs), std::end(kCodecs),
                                        [&](const CodecRow& row) { return row.encoding == encoding; });
  return SaveResult::from(writeAtomically(files, path, options.sync,
                                          [&](OutputStream& out) { return writeVoc(out, wave, codec); }));
}

}  // namespace plumetta
