// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/mp3_reader.h"

#include <mad.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

#include "formats/mp3_frame_scan.h"
#include "platform/pages_ahead.h"

namespace plumetta {
namespace {

constexpr float kFixedScale = 3.725290298461914e-9f;  // 2^-28: the decoder's numbers have 28 fractional bits
constexpr size_t kReadPart = size_t{1} << 20;
constexpr float kReadingShare = 0.1f;  // of the progress
constexpr int kEventsPerReport = 8;
constexpr size_t kId3v1Bytes = 128;
// Compressed or other data in which bytes that look like a frame's are an accident.
constexpr const char* kOtherContainers[] = {"RIFF", "RF64", "FORM", "fLaC", "OggS", "wvpk"};

// The whole file in memory, with the zeroes behind it that the decoder wants to see after a last frame.
struct FileBytes {
  BlockMemory block;
  size_t size = 0;
  bool complete = false;

  const uint8_t* data() const { return static_cast<const uint8_t*>(block.data()); }
  std::span<const uint8_t> span() const { return {data(), size}; }
};

LoadResult cancelledLoad() { return {LoadStatus::cancelled, {}, {}, {}}; }

LoadResult readWhole(File& file, const WaveProgress& progress, FileBytes& bytes) {
  const uint64_t all = file.size();
  // The decoder counts bytes in a long, which has 32 bits on some systems.
  if (all > std::numeric_limits<unsigned long>::max() - MAD_BUFFER_GUARD ||
      !bytes.block.resize(static_cast<size_t>(all) + MAD_BUFFER_GUARD)) {
    return LoadResult::outOfMemory();
  }
  auto* target = static_cast<uint8_t*>(bytes.block.data());
  std::error_code error;
  while (bytes.size < all) {
    const size_t part = std::min<size_t>(kReadPart, static_cast<size_t>(all) - bytes.size);
    const size_t came = file.read(target + bytes.size, part, error);
    bytes.size += came;
    if (came < part) break;
    const double fraction = static_cast<double>(bytes.size) / static_cast<double>(all);
    if (!progress.report(kReadingShare * static_cast<float>(fraction))) return cancelledLoad();
  }
  bytes.complete = bytes.size == all;
  std::memset(target + bytes.size, 0, MAD_BUFFER_GUARD);
  return {};
}

// One run of the decoder over a file's bytes into a buffer, which grows where the scan has promised too
// little. The callbacks' return value goes through C code: nothing in them throws.
class Mp3Decoding {
 public:
  Mp3Decoding(const FileBytes& bytes, const Mp3Scan& scan, CWave& wave)
      : bytes_(bytes), first_(scan.firstFrame), wave_(wave), channels_(scan.channels) {
    // What the scan says is a wish; without the memory for it, room is made as frames come.
    const int64_t wish = std::clamp<int64_t>(scan.frames, 1, kMaxFrames);
    if (!wave_.resize(wish, channels_)) return;
    room_ = wish;
    if (!scan.guessed) pages_.emplace(wave_.samples(), bytesFor(wish));
  }

  LoadResult run();

 private:
  static mad_flow onInput(void* self, mad_stream* stream) {
    return static_cast<Mp3Decoding*>(self)->hand(*stream);
  }
  static mad_flow onOutput(void* self, const mad_header*, mad_pcm* pcm) {
    return static_cast<Mp3Decoding*>(self)->take(*pcm);
  }
  // What is damaged is left out and the rest goes on.
  static mad_flow onError(void* self, mad_stream*, mad_frame*) {
    return static_cast<Mp3Decoding*>(self)->goOn();
  }

  mad_flow hand(mad_stream& stream);
  mad_flow take(const mad_pcm& pcm);
  size_t bytesFor(int64_t frames) const {
    return static_cast<size_t>(frames) * static_cast<size_t>(channels_) * sizeof(float);
  }
  bool becomeStereo();
  bool makeRoom(int frames);
  void append(const mad_pcm& pcm);
  mad_flow goOn();
  mad_flow stop(LoadResult why) {
    result_ = std::move(why);
    return MAD_FLOW_STOP;
  }
  LoadResult finish();

  const FileBytes& bytes_;
  size_t first_;
  CWave& wave_;
  int channels_;
  std::optional<PagesAhead> pages_;  // must be gone before the block changes
  int64_t room_ = 0;                 // frames that the buffer has memory for
  int64_t frames_ = 0;               // written so far
  uint32_t rate_ = 0;
  bool rateChanged_ = false;
  bool hasStereo_ = false;
  bool cutOff_ = false;
  int events_ = 0;
  const mad_stream* stream_ = nullptr;
  LoadResult result_;
};

LoadResult Mp3Decoding::run() {
  mad_decoder decoder;
  mad_decoder_init(&decoder, this, onInput, nullptr, nullptr, onOutput, onError, nullptr);
  const int outcome = mad_decoder_run(&decoder, MAD_DECODER_MODE_SYNC);
  mad_decoder_finish(&decoder);
  if (result_.status != LoadStatus::loaded) return result_;
  if (outcome != 0) return LoadResult::outOfMemory();
  return finish();
}

// All the bytes at once; asked again, the decoder has got as far as it can.
mad_flow Mp3Decoding::hand(mad_stream& stream) {
  if (stream_ == nullptr) {
    stream_ = &stream;
    mad_stream_buffer(&stream, bytes_.data() + first_,
                      static_cast<unsigned long>(bytes_.size + MAD_BUFFER_GUARD - first_));
    return MAD_FLOW_CONTINUE;
  }
  const uint8_t* end = bytes_.data() + bytes_.size;
  const uint8_t* next = stream.next_frame;
  cutOff_ = next != nullptr && next + Mp3FrameHeader::kBytes <= end && isMp3Sync(next) &&
            Mp3FrameHeader(next).bytes() > static_cast<size_t>(end - next);
  return MAD_FLOW_STOP;
}

mad_flow Mp3Decoding::take(const mad_pcm& pcm) {
  if (pcm.channels == 2 && !hasStereo_) {
    hasStereo_ = true;
    if (!becomeStereo()) return stop(LoadResult::outOfMemory());
  }
  if (frames_ + pcm.length > kMaxFrames) return stop(LoadResult::tooLong());
  if (!makeRoom(pcm.length)) return stop(LoadResult::outOfMemory());
  rateChanged_ = rateChanged_ || (rate_ != 0 && rate_ != pcm.samplerate);
  rate_ = pcm.samplerate;
  append(pcm);
  return goOn();
}

// What came so far was mono: it goes to both channels.
bool Mp3Decoding::becomeStereo() {
  if (channels_ == 2) return true;
  pages_.reset();
  wave_.setLayout(1, static_cast<int32_t>(frames_));
  if (frames_ > 0 && !wave_.monoToStereo()) return false;
  channels_ = 2;
  room_ = frames_;
  return true;
}

bool Mp3Decoding::makeRoom(int frames) {
  if (frames_ + frames <= room_) return true;
  pages_.reset();
  const int64_t wanted = std::min<int64_t>(kMaxFrames, std::max(frames_ + frames, frames_ + frames_ / 2));
  if (!wave_.resize(wanted, channels_)) return false;
  room_ = wanted;
  return true;
}

void Mp3Decoding::append(const mad_pcm& pcm) {
  float* out = wave_.samples() + frames_ * channels_;
  const mad_fixed_t* left = pcm.samples[0];
  const mad_fixed_t* right = pcm.samples[pcm.channels == 2 ? 1 : 0];
  if (channels_ == 1) {
    for (int i = 0; i < pcm.length; ++i) out[i] = static_cast<float>(left[i]) * kFixedScale;
  } else {
    for (int i = 0; i < pcm.length; ++i) {
      out[2 * i] = static_cast<float>(left[i]) * kFixedScale;
      out[2 * i + 1] = static_cast<float>(right[i]) * kFixedScale;
    }
  }
  frames_ += pcm.length;
}

mad_flow Mp3Decoding::goOn() {
  if (++events_ % kEventsPerReport != 0) return MAD_FLOW_CONTINUE;
  const double fraction =
      static_cast<double>(stream_->this_frame - bytes_.data()) / static_cast<double>(bytes_.size);
  const float shown = kReadingShare + (1 - kReadingShare) * static_cast<float>(fraction);
  return wave_.progress.report(shown) ? MAD_FLOW_CONTINUE : stop(cancelledLoad());
}

// What was decoded has the last word on length, channels and rate.
LoadResult Mp3Decoding::finish() {
  if (frames_ == 0) return LoadResult::failure("There is no MPEG audio in this file that can be decoded.");
  pages_.reset();
  wave_.setLayout(channels_, static_cast<int32_t>(frames_));
  if (!hasStereo_) wave_.mixDownToMono(0);
  wave_.resize(frames_, wave_.channels());  // giving memory back can't lose samples
  wave_.setSampleRate(rate_);
  wave_.setBitsPerSample(16);
  wave_.setFormatTag(kFormatPcm);
  if (rateChanged_) {
    result_.warnings.push_back("The sample rate changes within this file: all of it was taken as " +
                               std::to_string(rate_) + " Hz.");
  }
  if (cutOff_ || !bytes_.complete) {
    result_.warnings.push_back("The file is truncated: only the audio that is there was loaded.");
  }
  return std::move(result_);
}

bool hasId3(std::span<const uint8_t> data) {
  if (id3TagBytes(data) > 0) return true;
  return data.size() >= kId3v1Bytes && std::memcmp(data.data() + data.size() - kId3v1Bytes, "TAG", 3) == 0;
}

LoadResult readMp3(File& file, CWave& wave) {
  FileBytes bytes;
  LoadResult reading = readWhole(file, wave.progress, bytes);
  if (reading.status != LoadStatus::loaded) return reading;
  const auto scan = scanMp3Frames(bytes.span(), wave.progress);
  if (!scan) return cancelledLoad();
  LoadResult result = Mp3Decoding(bytes, *scan, wave).run();
  if (hasId3(bytes.span())) result.textKinds.push_back("ID3");
  return result;
}

// ---- The probe ------------------------------------------------------------------------------------------

constexpr int kSure = 3;  // headers in a row, of which chance seldom makes so many

struct FrameRun {
  int headers = 0;
  size_t end = 0;       // of the last frame
  bool broken = false;  // ended by something that is no header of the same stream, and not by the data's end
};

FrameRun frameRun(std::span<const uint8_t> data, size_t at) {
  FrameRun run;
  std::optional<Mp3FrameHeader> first;
  while (at + Mp3FrameHeader::kBytes <= data.size()) {
    const Mp3FrameHeader header(data.data() + at);
    run.broken = !isMp3Sync(data.data() + at) || header.bytes() == 0 || (first && !first->sameStream(header));
    if (run.broken) break;
    if (!first) first = header;
    ++run.headers;
    at += header.bytes();
    run.end = at;
  }
  return run;
}

bool isOtherContainer(const FileHead& head) {
  return std::any_of(std::begin(kOtherContainers), std::end(kOtherContainers),
                     [&](const char* magic) { return head.audioHas(0, magic); });
}

// The decoder's own reading of headers, which knows frames of free bit rate too.
bool hasHeadersInARow(std::span<const uint8_t> data, int wanted) {
  mad_stream stream;
  mad_header header;
  mad_stream_init(&stream);
  mad_header_init(&header);
  mad_stream_buffer(&stream, data.data(), static_cast<unsigned long>(data.size()));
  int row = 0;
  while (row < wanted) {
    if (mad_header_decode(&header, &stream) == 0) {
      ++row;
    } else if (MAD_RECOVERABLE(stream.error)) {
      row = 0;
    } else {
      break;
    }
  }
  mad_header_finish(&header);
  mad_stream_finish(&stream);
  return row == wanted;
}

}  // namespace

Likeness probeMp3(const FileHead& head) {
  if (head.size == 0) return Likeness::byName;
  if (head.has(0, "RIFF") && head.has(8, "RMP3"))
    return Likeness::certain;  // frames in a RIFF form of their own
  if (isOtherContainer(head)) return Likeness::none;
  const std::vector<uint8_t>& audio = head.audio();
  const FrameRun run = frameRun(audio, 0);
  if (run.headers >= kSure || (run.headers == kSure - 1 && !run.broken)) return Likeness::certain;
  if (head.tagBytes > 0 || run.end == head.size) return Likeness::possible;
  for (size_t at = 1; at + Mp3FrameHeader::kBytes <= audio.size(); ++at) {
    if (audio[at] == 0xFF && frameRun(audio, at).headers >= kSure) return Likeness::possible;
  }
  return Likeness::byName;
}

bool holdsMp3Frames(File& file) {
  constexpr uint64_t kLookedAt = uint64_t{1} << 22;
  std::vector<uint8_t> bytes(static_cast<size_t>(std::min(file.size(), kLookedAt)));
  std::error_code error;
  bytes.resize(file.read(bytes.data(), bytes.size(), error));
  return hasHeadersInARow(bytes, kSure);
}

LoadResult loadMp3(FileSystem& files, const std::string& path, CWave& wave) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  wave.setFileName(path);
  wave.loops.clear();
  wave.markers.clear();
  wave.envelope.clear();
  wave.setLayout(wave.channels(), 0);
  LoadResult result = readMp3(*file, wave);
  if (result.status != LoadStatus::loaded) wave.setLayout(wave.channels(), 0);
  return result;
}

}  // namespace plumetta
