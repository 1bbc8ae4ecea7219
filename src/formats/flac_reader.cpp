// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/flac_reader.h"

#include <FLAC/stream_decoder.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "formats/frame_sink.h"
#include "formats/input_stream.h"
#include "formats/sample_codec.h"

namespace plumetta {
namespace {

constexpr size_t kOggPacket = 28;  // of the first page, which holds one packet alone

struct DecoderDeleter {
  void operator()(FLAC__StreamDecoder* decoder) const { FLAC__stream_decoder_delete(decoder); }
};

// What a program notes of itself or of the loudspeakers is no text of a person's.
bool isText(std::string_view comment) {
  const size_t equals = comment.find('=');
  if (equals == std::string_view::npos || equals + 1 == comment.size()) return false;
  std::string name(comment.substr(0, equals));
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return name != "ENCODER" && name != "WAVEFORMATEXTENSIBLE_CHANNEL_MASK";
}

bool hasText(const FLAC__StreamMetadata_VorbisComment& block) {
  return std::any_of(block.comments, block.comments + block.num_comments, [](const auto& comment) {
    return comment.entry != nullptr && isText({reinterpret_cast<const char*>(comment.entry), comment.length});
  });
}

// One load. The library calls back for bytes, and with the frames and the metadata that it finds in them.
class FlacDecoding {
 public:
  FlacDecoding(InputStream& in, CWave& wave)
      : in_(in), progress_(wave.progress), sink_(wave), decoder_(FLAC__stream_decoder_new()) {}
  LoadResult run(bool inOgg);

 private:
  bool open(bool inOgg);
  LoadResult begin();
  LoadResult finish();
  bool decodeFrame();
  bool goOn();
  size_t read(void* bytes, size_t count) { return goOn() ? in_.read(bytes, count) : 0; }
  void noteMetadata(const FLAC__StreamMetadata& block);
  bool take(const FLAC__FrameHeader& header, const int32_t* const* channels);
  void noteError(FLAC__StreamDecoderErrorStatus status);
  bool hasAllClaimed() const { return claimedFrames_ > 0 && sink_.frames() >= claimedFrames_; }
  static FlacDecoding& of(void* user) { return *static_cast<FlacDecoding*>(user); }

  InputStream& in_;
  const WaveProgress& progress_;
  FrameSink sink_;
  FLAC__StreamMetadata_StreamInfo info_{};
  int64_t claimedFrames_ = 0;  // 0 when the file doesn't tell
  int blocksOfFrame_ = 0;      // that the library gave with one frame; see `take`
  bool hasInfo_ = false;
  bool hasText_ = false;
  bool isDamaged_ = false;
  bool isBehindEnd_ = false;  // whatever follows the claimed frames is not of this stream
  LoadResult result_;
  std::unique_ptr<FLAC__StreamDecoder, DecoderDeleter> decoder_;
};

bool FlacDecoding::open(bool inOgg) {
  if (!decoder_) return false;
  FLAC__stream_decoder_set_metadata_respond(decoder_.get(), FLAC__METADATA_TYPE_VORBIS_COMMENT);
  const auto giveBytes = [](const FLAC__StreamDecoder*, FLAC__byte* bytes, size_t* count, void* user) {
    *count = of(user).read(bytes, *count);
    if (of(user).result_.status != LoadStatus::loaded) return FLAC__STREAM_DECODER_READ_STATUS_ABORT;
    return *count > 0 ? FLAC__STREAM_DECODER_READ_STATUS_CONTINUE
                      : FLAC__STREAM_DECODER_READ_STATUS_END_OF_STREAM;
  };
  const auto takeFrame = [](const FLAC__StreamDecoder*, const FLAC__Frame* frame,
                            const FLAC__int32* const* channels, void* user) {
    return of(user).take(frame->header, channels) ? FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE
                                                  : FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
  };
  const auto takeMetadata = [](const FLAC__StreamDecoder*, const FLAC__StreamMetadata* block, void* user) {
    of(user).noteMetadata(*block);
  };
  const auto takeError = [](const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus status, void* user) {
    of(user).noteError(status);
  };
  // Without the calls for seeking, which nobody needs who reads from start to end.
  const auto init = inOgg ? FLAC__stream_decoder_init_ogg_stream : FLAC__stream_decoder_init_stream;
  return init(decoder_.get(), giveBytes, nullptr, nullptr, nullptr, nullptr, takeFrame, takeMetadata,
              takeError, this) == FLAC__STREAM_DECODER_INIT_STATUS_OK;
}

LoadResult FlacDecoding::run(bool inOgg) {
  if (!open(inOgg)) return LoadResult::outOfMemory();
  FLAC__stream_decoder_process_until_end_of_metadata(decoder_.get());
  if (result_.status == LoadStatus::loaded) result_ = begin();
  while (result_.status == LoadStatus::loaded && decodeFrame()) {
  }
  return result_.status == LoadStatus::loaded ? finish() : std::move(result_);
}

LoadResult FlacDecoding::begin() {
  if (!hasInfo_) return LoadResult::failure("This FLAC file is damaged: it does not tell its format.");
  if (info_.total_samples > static_cast<uint64_t>(kMaxFrames)) return LoadResult::tooLong();
  claimedFrames_ = static_cast<int64_t>(info_.total_samples);
  return sink_.begin(info_.sample_rate, static_cast<int>(info_.channels),
                     wholeWidth(static_cast<int>(info_.bits_per_sample)), kFormatPcm, claimedFrames_,
                     in_.size());
}

LoadResult FlacDecoding::finish() {
  const auto state = FLAC__stream_decoder_get_state(decoder_.get());
  if (state == FLAC__STREAM_DECODER_MEMORY_ALLOCATION_ERROR) return LoadResult::outOfMemory();
  sink_.end();
  if (isDamaged_ || state == FLAC__STREAM_DECODER_OGG_ERROR || sink_.frames() < claimedFrames_) {
    result_.warnings.push_back("The file is truncated or damaged: only the audio that is there was loaded.");
  }
  if (hasText_) result_.textKinds.push_back("Vorbis comments");
  return std::move(result_);
}

// False at the end of the stream, and where nothing more can be had of it.
bool FlacDecoding::decodeFrame() {
  blocksOfFrame_ = 0;
  if (!FLAC__stream_decoder_process_single(decoder_.get())) return false;
  const auto state = FLAC__stream_decoder_get_state(decoder_.get());
  return state != FLAC__STREAM_DECODER_END_OF_STREAM && state != FLAC__STREAM_DECODER_ABORTED;
}

// False when the person has asked to stop.
bool FlacDecoding::goOn() {
  const double fraction =
      claimedFrames_ > 0
          ? static_cast<double>(sink_.frames()) / static_cast<double>(claimedFrames_)
          : static_cast<double>(in_.position()) / static_cast<double>(std::max<uint64_t>(in_.size(), 1));
  if (progress_.report(static_cast<float>(std::min(fraction, 1.0)))) return true;
  result_ = {LoadStatus::cancelled, {}, {}, {}};
  return false;
}

void FlacDecoding::noteMetadata(const FLAC__StreamMetadata& block) {
  if (block.type == FLAC__METADATA_TYPE_VORBIS_COMMENT) {
    hasText_ = hasText_ || hasText(block.data.vorbis_comment);
  } else if (block.type == FLAC__METADATA_TYPE_STREAMINFO && !hasInfo_) {
    info_ = block.data.stream_info;
    hasInfo_ = true;
  }
}

// A frame, or silence in place of lost ones ahead of it, of which nothing else tells. False when no more is
// wanted.
bool FlacDecoding::take(const FLAC__FrameHeader& header, const int32_t* const* channels) {
  if (isBehindEnd_) return false;
  if (++blocksOfFrame_ > 1) isDamaged_ = true;
  if (header.channels != info_.channels || header.bits_per_sample != info_.bits_per_sample) {
    isDamaged_ = true;
    return true;
  }
  float* floats = sink_.room(header.blocksize);
  if (floats == nullptr) {
    result_ = sink_.refusal();
    return false;
  }
  interleavePcm(channels, static_cast<int>(header.channels), static_cast<int>(header.bits_per_sample), floats,
                header.blocksize);
  sink_.added(header.blocksize);
  return goOn();
}

// Once everything has come, what can't be understood is a tag of other programs.
void FlacDecoding::noteError(FLAC__StreamDecoderErrorStatus status) {
  if (hasAllClaimed()) {
    isBehindEnd_ = true;
  } else if (status != FLAC__STREAM_DECODER_ERROR_STATUS_BAD_METADATA) {
    isDamaged_ = true;
  }
}

}  // namespace

Likeness probeFlac(const FileHead& head) {
  return head.audioHas(0, "fLaC") ? Likeness::certain : Likeness::none;
}

Likeness probeOggFlac(const FileHead& head) {
  constexpr std::string_view mapping =
      "\x7F"
      "FLAC";
  return head.has(0, "OggS") && head.has(kOggPacket, mapping) ? Likeness::certain : Likeness::none;
}

LoadResult loadFlac(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  const FileHead head = FileHead::of(*file, {});
  InputStream in(*file);
  in.seek(head.tagBytes);
  LoadResult result = FlacDecoding(in, wave).run(head.has(0, "OggS"));
  if (head.tagBytes > 0 && result.status == LoadStatus::loaded) result.textKinds.push_back("ID3");
  wave.setFileName(path);
  return result;
}

}  // namespace plumetta
