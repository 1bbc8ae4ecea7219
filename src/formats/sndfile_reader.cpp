// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <optional>

#include "formats/file_view.h"
#include "formats/frame_sink.h"
#include "formats/sndfile_formats.h"
#include "formats/sndfile_stream.h"

namespace plumetta {
namespace {

constexpr int64_t kBlockFrames = 4096;

// How the library hands samples over before they go through our own scales.
enum class Transfer { shorts, ints, floats };

struct Reading {
  int subtype;
  Transfer transfer;
  Encoding encoding;  // of what is handed over; 8 bits come as the upper byte of a short
  SignType signType;
  int bits;  // of the buffer
  uint16_t formatTag;
};

constexpr auto kSigned = SignType::isSigned;

constexpr Reading asShorts(int subtype) {
  return {subtype, Transfer::shorts, Encoding::pcm16, kSigned, 16, kFormatPcm};
}
constexpr Reading asInts(int subtype, int bits) {
  return {subtype, Transfer::ints, Encoding::pcm32, kSigned, bits, kFormatPcm};
}
constexpr Reading asFloats(int subtype, int bits, uint16_t formatTag) {
  return {subtype, Transfer::floats, Encoding::float32, kSigned, bits, formatTag};
}

// µ-law and A-law have more range than eight bits of PCM, so the buffer holds them as 16 bits.
constexpr Reading kReadings[] = {
    {SF_FORMAT_PCM_S8, Transfer::shorts, Encoding::pcm8, kSigned, 8, kFormatPcm},
    {SF_FORMAT_PCM_U8, Transfer::shorts, Encoding::pcm8, SignType::isUnsigned, 8, kFormatPcm},
    asShorts(SF_FORMAT_PCM_16),
    asInts(SF_FORMAT_PCM_24, 24),
    asInts(SF_FORMAT_PCM_32, 32),
    asFloats(SF_FORMAT_FLOAT, 32, kFormatFloat),
    asFloats(SF_FORMAT_DOUBLE, 64, kFormatFloat),
    asShorts(SF_FORMAT_ULAW),
    asShorts(SF_FORMAT_ALAW),
    asShorts(SF_FORMAT_IMA_ADPCM),
    asShorts(SF_FORMAT_MS_ADPCM),
    asShorts(SF_FORMAT_GSM610),
    asShorts(SF_FORMAT_G721_32),
    asShorts(SF_FORMAT_G723_24),
    asShorts(SF_FORMAT_G723_40),
    asShorts(SF_FORMAT_DWVW_12),
    asShorts(SF_FORMAT_DWVW_16),
    asInts(SF_FORMAT_DWVW_24, 24),
    asShorts(SF_FORMAT_ALAC_16),
    asInts(SF_FORMAT_ALAC_20, 24),
    asInts(SF_FORMAT_ALAC_24, 24),
    asInts(SF_FORMAT_ALAC_32, 32),
    asFloats(SF_FORMAT_VORBIS, 16, kFormatPcm),
    asFloats(SF_FORMAT_OPUS, 16, kFormatPcm),
};

const Reading* readingOf(int format) {
  const auto found = std::find_if(std::begin(kReadings), std::end(kReadings), [&](const Reading& r) {
    return r.subtype == (format & SF_FORMAT_SUBMASK);
  });
  return found == std::end(kReadings) ? nullptr : &*found;
}

// The upper byte of each short, as an 8-bit file of this sign type holds it.
void keepUpperBytes(int16_t* shorts, size_t count, SignType signType) {
  auto* bytes = reinterpret_cast<uint8_t*>(shorts);
  const uint8_t flip = signType == SignType::isUnsigned ? 0x80 : 0;
  for (size_t i = 0; i < count; ++i) {
    bytes[i] = static_cast<uint8_t>(static_cast<uint16_t>(shorts[i]) >> 8 ^ flip);
  }
}

class BlockReader {
 public:
  BlockReader(SNDFILE& sound, const Reading& reading, int channels)
      : sound_(sound),
        reading_(reading),
        channels_(static_cast<size_t>(channels)),
        decode_(blockDecoder(reading.encoding, reading.signType)),
        raw_(reading.transfer == Transfer::floats ? 0 : channels_ * kBlockFrames) {}

  // How many frames came, at most kBlockFrames.
  int64_t read(float* floats, int64_t frames) {
    if (reading_.transfer == Transfer::floats) return sf_readf_float(&sound_, floats, frames);
    auto* shorts = reinterpret_cast<int16_t*>(raw_.data());
    const int64_t come = reading_.transfer == Transfer::shorts ? sf_readf_short(&sound_, shorts, frames)
                                                               : sf_readf_int(&sound_, raw_.data(), frames);
    const size_t samples = static_cast<size_t>(std::max<int64_t>(come, 0)) * channels_;
    if (reading_.encoding == Encoding::pcm8) keepUpperBytes(shorts, samples, reading_.signType);
    decode_(reinterpret_cast<const uint8_t*>(raw_.data()), floats, samples);
    return come;
  }

 private:
  SNDFILE& sound_;
  const Reading& reading_;
  size_t channels_;
  BlockDecoder decode_;
  std::vector<int32_t> raw_;
};

// Everything that one load carries along.
struct Load {
  const SndfileKind& kind;
  InputStream& in;
  SNDFILE& sound;
  const SF_INFO& info;
  CWave& wave;

  // Not every stream tells how long it is.
  bool knowsLength() const { return info.frames >= 0 && info.frames < SF_COUNT_MAX; }
  float fractionDone(int64_t frames) const {
    if (knowsLength())
      return static_cast<float>(frames) / static_cast<float>(std::max<int64_t>(info.frames, 1));
    return static_cast<float>(in.position()) / static_cast<float>(std::max<uint64_t>(in.size(), 1));
  }
};

LoadResult readFrames(const Load& load, const Reading& reading) {
  const int64_t claimed = load.knowsLength() ? load.info.frames : kMaxFrames;
  if (load.knowsLength() && claimed > kMaxFrames) return LoadResult::tooLong();
  FrameSink sink(load.wave);
  LoadResult result = sink.begin(static_cast<uint32_t>(load.info.samplerate), load.info.channels,
                                 reading.bits, reading.formatTag, claimed, load.in.size());
  if (result.status != LoadStatus::loaded) return result;
  BlockReader blocks(load.sound, reading, load.info.channels);
  for (int64_t wanted = kBlockFrames; wanted > 0;) {
    wanted = std::min(kBlockFrames, claimed - sink.frames());
    float* const room = sink.room(wanted);
    if (room == nullptr) return sink.refusal();
    const int64_t come = blocks.read(room, wanted);
    if (come <= 0) break;
    sink.added(come);
    if (!load.wave.progress.report(load.fractionDone(sink.frames())))
      return {LoadStatus::cancelled, {}, {}, {}};
  }
  sink.end();
  if (load.knowsLength() && sink.frames() < claimed) {
    result.warnings.push_back("The file is truncated or damaged: only the audio that is there was loaded.");
  }
  return result;
}

// All of the left channel came first: puts the two side by side.
void interleave(CWave& wave) {
  const auto frames = static_cast<size_t>(wave.frames());
  const std::vector<float> left(wave.samples(), wave.samples() + frames);
  float* samples = wave.samples();
  for (size_t f = 0; f < frames; ++f) {
    const float right = samples[frames + f];
    samples[2 * f] = left[f];
    samples[2 * f + 1] = right;
  }
}

bool hasText(SNDFILE& sound) {
  for (const int kind : {SF_STR_TITLE, SF_STR_COPYRIGHT, SF_STR_ARTIST, SF_STR_COMMENT, SF_STR_DATE,
                         SF_STR_ALBUM, SF_STR_LICENSE, SF_STR_TRACKNUMBER, SF_STR_GENRE}) {
    const char* text = sf_get_string(&sound, kind);
    if (text != nullptr && *text != '\0') return true;
  }
  return false;
}

// How long the file says that it is, where that is more than it has.
std::optional<uint64_t> lengthBeforeTruncation(const SndfileKind& kind, const FileHead& head) {
  if (kind.claimedBytes == nullptr) return std::nullopt;
  const uint64_t claimed = kind.claimedBytes(head);
  // Some programs count a pad byte that they leave out.
  return claimed > head.size + 1 ? std::optional(claimed) : std::nullopt;
}

LoadResult readOpened(const Load& load) {
  const Reading* reading = readingOf(load.info.format);
  if ((load.info.format & SF_FORMAT_TYPEMASK) != load.kind.container || reading == nullptr) {
    return LoadResult::failure("The encoding of this " + std::string(load.kind.name) +
                               " file is not supported.");
  }
  LoadResult result = readFrames(load, *reading);
  if (result.status != LoadStatus::loaded) return result;
  CWave& wave = load.wave;
  if (load.kind.planar && wave.channels() == 2) interleave(wave);
  if (load.kind.readAnnotations != nullptr) {
    load.kind.readAnnotations(load.sound, load.in.size(), wave);
    wave.loops.clamp(wave.frames() - 1);
    wave.markers.clamp(wave.frames() - 1);
  }
  if (hasText(load.sound)) result.textKinds.push_back(load.kind.textKind);
  return result;
}

void dropPadByte(const SndfileKind& kind, const FileHead& head, CWave& wave) {
  if (kind.soundBytes == nullptr) return;
  const uint64_t frames =
      kind.soundBytes(head) * 8 / static_cast<uint64_t>(wave.channels() * wave.bitsPerSample());
  if (frames == 0 || frames + 1 != static_cast<uint64_t>(wave.frames())) return;
  wave.resize(wave.frames() - 1, wave.channels());
  wave.setLayout(wave.channels(), static_cast<int32_t>(frames));
}

LoadResult loadOpened(const SndfileKind& kind, File& file, CWave& wave) {
  const FileHead head = FileHead::of(file, {});
  InputStream in(file);
  LoadResult result = loadSndfile(kind, in, lengthBeforeTruncation(kind, head), wave);
  if (result.status == LoadStatus::loaded) dropPadByte(kind, head, wave);
  return result;
}

}  // namespace

LoadResult loadSndfile(const SndfileKind& kind, InputStream& in, std::optional<uint64_t> claimedBytes,
                       CWave& wave) {
  SndfileInput input(in, kind.refusesTruncated && claimedBytes ? *claimedBytes : in.size());
  SF_INFO info{};
  const SndfilePointer sound = input.open(info);
  if (!sound) {
    return LoadResult::failure("This " + std::string(kind.name) +
                               " file is damaged or of a kind that is not " +
                               "supported: " + sf_strerror(nullptr));
  }
  LoadResult result = readOpened({kind, in, *sound, info, wave});
  if (claimedBytes && result.status == LoadStatus::loaded && result.warnings.empty()) {
    result.warnings.push_back("The file is truncated: only the audio that is there was loaded.");
  }
  return result;
}

// The library takes the positions in most containers for those in the file, and would be led astray by a tag.
LoadResult loadSndfile(const SndfileKind& kind, File& file, CWave& wave) {
  const uint64_t tag = FileHead::of(file, {}).tagBytes;
  if (tag == 0) return loadOpened(kind, file, wave);
  FileView audio(file, tag);
  LoadResult result = loadOpened(kind, audio, wave);
  if (result.status == LoadStatus::loaded) result.textKinds.push_back("ID3");
  return result;
}

LoadResult loadSndfile(const SndfileKind& kind, FileSystem& files, const std::string& path, CWave& wave) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  LoadResult result = loadSndfile(kind, *file, wave);
  wave.setFileName(path);
  return result;
}

}  // namespace plumetta
