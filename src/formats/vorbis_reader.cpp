// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/vorbis_reader.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "formats/frame_sink.h"
#include "formats/vorbis_library.h"

namespace plumetta {
namespace {

constexpr int kBufferBytes = 4096;
constexpr int kLittleEndian = 0;
constexpr int kWordBytes = 2;
constexpr int kSigned = 1;
constexpr int kCurrentLink = -1;
constexpr float kFullScale = 32767.5f;
// Holes that come without a byte being read in between. One piece of the file has far fewer pages than that,
// so only a stream that will never give anything again reaches it.
constexpr int kMaxIdleHoles = 1000;

// The file as the library's callbacks see it.
class VorbisSource {
 public:
  explicit VorbisSource(std::unique_ptr<File> file) : file_(std::move(file)), size_(file_->size()) {}

  uint64_t size() const { return size_; }
  uint64_t position() const { return position_; }
  uint64_t bytesRead() const { return bytesRead_; }
  // What kept bytes from being read, if anything did.
  const std::error_code& error() const { return error_; }

  static constexpr VorbisCallbacks callbacks() { return {read, seek, close, tell}; }

 private:
  static VorbisSource& of(void* source) { return *static_cast<VorbisSource*>(source); }

  static size_t read(void* destination, size_t itemBytes, size_t items, void* source) {
    VorbisSource& self = of(source);
    if (itemBytes == 0 || self.error_ || !self.file_) return 0;
    const size_t bytes = self.file_->read(destination, itemBytes * items, self.error_);
    self.position_ += bytes;
    self.bytesRead_ += bytes;
    return bytes / itemBytes;
  }
  static int seek(void* source, int64_t offset, int whence) {
    VorbisSource& self = of(source);
    int64_t base = 0;
    if (whence == SEEK_CUR) base = static_cast<int64_t>(self.position_);
    if (whence == SEEK_END) base = static_cast<int64_t>(self.size_);
    const int64_t target = base + offset;
    if (target < 0 || !self.file_) return -1;
    if (const auto error = self.file_->seek(static_cast<uint64_t>(target))) {
      self.error_ = error;
      return -1;
    }
    self.position_ = static_cast<uint64_t>(target);
    return 0;
  }
  static int close(void* source) {
    of(source).file_.reset();
    return 0;
  }
  static long tell(void* source) { return static_cast<long>(of(source).position_); }

  std::unique_ptr<File> file_;
  uint64_t size_;
  uint64_t position_ = 0;
  uint64_t bytesRead_ = 0;
  std::error_code error_;
};

// An open stream of the library.
class VorbisStream {
 public:
  VorbisStream(const VorbisLibrary& library, VorbisSource& source) : library_(library) {
    result_ = library.openCallbacks(&source, &file_, nullptr, 0, VorbisSource::callbacks());
  }
  ~VorbisStream() {
    if (result_ == 0) library_.clear(&file_);
  }
  VorbisStream(const VorbisStream&) = delete;
  VorbisStream& operator=(const VorbisStream&) = delete;

  // 0, or what the library has against the file.
  int openResult() const { return result_; }
  bool hasComments() {
    const VorbisComment* comment = library_.comment(&file_, kCurrentLink);
    return comment != nullptr && comment->comments > 0;
  }
  VorbisInfo info() {
    const VorbisInfo* current = library_.info(&file_, kCurrentLink);
    return current != nullptr ? *current : VorbisInfo{};
  }
  int64_t pcmTotal() { return std::max<int64_t>(library_.pcmTotal(&file_, kCurrentLink), 0); }
  long read(std::array<int16_t, kBufferBytes / kWordBytes>& words) {
    return library_.read(&file_, reinterpret_cast<char*>(words.data()), kBufferBytes, kLittleEndian,
                         kWordBytes, kSigned, &section_);
  }
  int section() const { return section_; }

 private:
  const VorbisLibrary& library_;
  OggVorbisFile file_{};
  int result_;
  int section_ = 0;
};

LoadResult refusal(int openResult, const VorbisSource& source) {
  if (source.error()) return LoadResult::failure(source.error().message());
  return LoadResult::failure(openResult == kVorbisNotVorbis ? "The Ogg file holds no Vorbis audio."
                                                            : "The Vorbis audio in it is damaged.");
}

enum class Ending { complete, withHoles, otherFormat, noRoom, cancelled };

bool sameFormat(const VorbisInfo& a, const VorbisInfo& b) {
  return a.channels == b.channels && a.rate == b.rate;
}

// Every frame from here to the end of the stream, or of its part in this format.
Ending readFrames(VorbisStream& stream, const VorbisSource& source, const VorbisInfo& format, FrameSink& sink,
                  const WaveProgress& progress) {
  std::array<int16_t, kBufferBytes / kWordBytes> words;
  int section = stream.section();
  int idleHoles = 0;
  uint64_t bytesRead = 0;
  Ending ending = Ending::complete;
  while (true) {
    const long bytes = stream.read(words);
    if (bytes == 0) return ending;
    if (bytes < 0) ending = Ending::withHoles;
    idleHoles = bytes > 0 || source.bytesRead() != bytesRead ? 0 : idleHoles + 1;
    bytesRead = source.bytesRead();
    if (idleHoles > kMaxIdleHoles) return ending;
    const auto fraction = static_cast<float>(source.position()) / static_cast<float>(source.size());
    if (!progress.report(std::min(fraction, 1.0f))) return Ending::cancelled;
    if (bytes < 0) continue;
    if (stream.section() != section && !sameFormat(stream.info(), format)) return Ending::otherFormat;
    section = stream.section();
    const long samples = bytes / kWordBytes;
    float* floats = sink.room(samples / format.channels);
    if (floats == nullptr) return Ending::noRoom;
    for (long i = 0; i < samples; ++i) floats[i] = words[static_cast<size_t>(i)] / kFullScale;
    sink.added(samples / format.channels);
  }
}

void warnOfEnding(Ending ending, const VorbisSource& source, bool shorterThanClaimed, LoadResult& result) {
  if (ending == Ending::otherFormat) {
    result.warnings.push_back(
        "The file goes on with another sample rate or channel count: only what comes before was loaded.");
  } else if (source.error()) {
    result.warnings.push_back("The file could not be read to its end: " + source.error().message());
  } else if (ending == Ending::withHoles || shorterThanClaimed) {
    result.warnings.push_back("The file is damaged: only the audio that is sound was loaded.");
  }
}

}  // namespace

Likeness probeVorbis(const FileHead& head) {
  if (!head.has(0, "OggS")) return Likeness::none;
  // The identification header of the Vorbis stream stands in one of the first pages, among those of others.
  constexpr std::string_view identification = "\x01vorbis";
  const auto found =
      std::search(head.bytes.begin(), head.bytes.end(), identification.begin(), identification.end());
  return found != head.bytes.end() ? Likeness::certain : Likeness::possible;
}

LoadResult loadVorbis(FileSystem& files, const std::string& path, CWave& wave) {
  VorbisLibrary library;
  if (!library.load()) return LoadResult::message("Unable to find vorbis.dll");
  std::error_code error;
  auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  VorbisSource source(std::move(file));
  VorbisStream stream(library, source);
  if (stream.openResult() != 0) return refusal(stream.openResult(), source);
  const bool hasComments = stream.hasComments();
  const VorbisInfo format = stream.info();
  const int64_t frames = stream.pcmTotal();
  FrameSink sink(wave);
  LoadResult result =
      sink.begin(static_cast<uint32_t>(format.rate), format.channels, 16, kFormatPcm, frames, source.size());
  if (result.status != LoadStatus::loaded) return result;
  const Ending ending = readFrames(stream, source, format, sink, wave.progress);
  if (ending == Ending::cancelled) return {LoadStatus::cancelled, {}, {}, {}};
  if (ending == Ending::noRoom) return sink.refusal();
  sink.end();
  warnOfEnding(ending, source, sink.frames() < frames, result);
  if (hasComments) result.textKinds.push_back("Vorbis comment");
  wave.setFileName(path);
  return result;
}

}  // namespace plumetta
