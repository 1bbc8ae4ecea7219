// SPDX-License-Identifier: GPL-3.0-or-later
// The containers that are read and written through libsndfile, and what each of them can hold.
#include "formats/sndfile_kind.h"

#include <algorithm>
#include <limits>

#include "formats/losses.h"
#include "formats/sndfile_annotations.h"
#include "formats/sndfile_probes.h"
#include "formats/wav_encoding.h"

namespace plumetta {
namespace {

constexpr uint64_t kFourGiB = uint64_t{1} << 32;
constexpr uint64_t kHeaderRoom = uint64_t{1} << 20;  // of a file whose whole size is a 32-bit field
constexpr uint64_t kAnyBytes = std::numeric_limits<uint64_t>::max();
constexpr uint32_t kAnyRate = std::numeric_limits<int32_t>::max();
constexpr uint32_t kAmigaRate = 65535;  // a field of 16 bits
constexpr uint32_t kFlacRate = 655350;
constexpr uint32_t kVorbisRate = 200000;

constexpr auto kSigned = SignType::isSigned;
constexpr auto kUnsigned = SignType::isUnsigned;

constexpr StoredEncodings everyWidth(StoredEncoding eight) {
  return {{eight,
           {Encoding::pcm16, kSigned, SF_FORMAT_PCM_16},
           {Encoding::pcm24, kSigned, SF_FORMAT_PCM_24},
           {Encoding::pcm32, kSigned, SF_FORMAT_PCM_32},
           {Encoding::float32, kSigned, SF_FORMAT_FLOAT},
           {Encoding::float64, kSigned, SF_FORMAT_DOUBLE},
           {Encoding::muLaw, kSigned, SF_FORMAT_ULAW},
           {Encoding::aLaw, kSigned, SF_FORMAT_ALAW}}};
}

constexpr StoredEncoding kSignedEight{Encoding::pcm8, kSigned, SF_FORMAT_PCM_S8};
constexpr StoredEncoding kUnsignedEight{Encoding::pcm8, kUnsigned, SF_FORMAT_PCM_U8};
constexpr StoredEncodings kFlacEncodings{{kSignedEight,
                                          {Encoding::pcm16, kSigned, SF_FORMAT_PCM_16},
                                          {Encoding::pcm24, kSigned, SF_FORMAT_PCM_24}}};
constexpr StoredEncodings kAmigaEncodings{{kSignedEight, {Encoding::pcm16, kSigned, SF_FORMAT_PCM_16}}};
constexpr StoredEncodings kVocEncodings{{kUnsignedEight,
                                         {Encoding::pcm16, kSigned, SF_FORMAT_PCM_16},
                                         {Encoding::muLaw, kSigned, SF_FORMAT_ULAW},
                                         {Encoding::aLaw, kSigned, SF_FORMAT_ALAW}}};

constexpr StoredEncodings onlyFloats(int subtype) { return {{{Encoding::float32, kSigned, subtype}}}; }

std::string opusRefusal(const CWave& wave) {
  if (wave.frames() == 0) return "An Opus file can't be empty.";
  for (const uint32_t rate : {8000u, 12000u, 16000u, 24000u, 48000u}) {
    if (wave.sampleRate() == rate) return {};
  }
  return "Opus holds 8000, 12000, 16000, 24000 or 48000 Hz, and this file has " +
         std::to_string(wave.sampleRate()) + " Hz: resample it first.";
}

const StoredEncoding* encodingOf(const SndfileKind& kind, Encoding encoding) {
  const auto found = std::find_if(kind.encodings.begin(), kind.encodings.end(), [&](const StoredEncoding& e) {
    return e.subtype != 0 && e.encoding == encoding;
  });
  return found == kind.encodings.end() ? nullptr : &*found;
}

// From the widest down; what is not of this ladder is as good as 16 bits.
constexpr Encoding kLadder[] = {Encoding::float64, Encoding::float32, Encoding::pcm32,
                                Encoding::pcm24,   Encoding::pcm16,   Encoding::pcm8};

size_t rungOf(Encoding encoding) {
  const auto found = std::find(std::begin(kLadder), std::end(kLadder), encoding);
  if (found == std::end(kLadder)) return rungOf(Encoding::pcm16);
  return static_cast<size_t>(found - std::begin(kLadder));
}

Encoding wantedEncoding(const CWave& wave) {
  const uint16_t tag = storedFormatTag(wave.bitsPerSample(), wave.formatTag());
  const auto format = wavEncoding(wave.bitsPerSample(), tag);
  return format ? format->encoding : Encoding::pcm16;
}

int bitsOf(Encoding encoding) { return 8 * bytesPerSample(encoding); }

uint64_t sampleBytes(const SndfileKind& kind, const CWave& wave) {
  const int width = bytesPerSample(storedEncoding(kind, wave).encoding);
  return uint64_t{wave.sampleCount()} * static_cast<uint64_t>(width);
}

bool hasLongerLabel(const CWave& wave, size_t bytes) {
  return std::any_of(wave.markers.begin(), wave.markers.end(),
                     [&](const Marker& marker) { return marker.label && marker.label->size() > bytes; });
}

}  // namespace

const SndfileKind kWav{.name = "WAV",
                       .container = SF_FORMAT_WAV,
                       .mostChannels = kMaxChannels,
                       .mostBytes = kFourGiB - kHeaderRoom,
                       .mostRate = kAnyRate,
                       .encodings = {}};
const SndfileKind kAiff{.name = "AIFF",
                        .container = SF_FORMAT_AIFF,
                        .mostChannels = kMaxChannels,
                        .mostBytes = kFourGiB - kHeaderRoom,
                        .mostRate = kAnyRate,
                        .encodings = everyWidth(kSignedEight),
                        .textKind = "text chunks",
                        .claimedBytes = formBytes,
                        .readAnnotations = readAiffAnnotations,
                        .writeAnnotations = writeAiffAnnotations,
                        .mostMarkers = kMostChunkMarkers,
                        .mostLoops = 2,
                        .longestLabel = kLongestAiffLabel,
                        .keepsSizeEven = true};
const SndfileKind kAmigaIff{.name = "Amiga IFF",
                            .container = SF_FORMAT_SVX,
                            .mostChannels = 1,
                            .mostBytes = kFourGiB - kHeaderRoom,
                            .mostRate = kAmigaRate,
                            .encodings = kAmigaEncodings,
                            .textKind = "text chunks",
                            .claimedBytes = formBytes,
                            .soundBytes = amigaSoundBytes,
                            .planar = true};
const SndfileKind kAu{.name = "Sun/NeXT AU",
                      .container = SF_FORMAT_AU,
                      .mostChannels = kMaxChannels,
                      .mostBytes = kFourGiB - kHeaderRoom,
                      .mostRate = kAnyRate,
                      .encodings = everyWidth(kSignedEight),
                      .textKind = "annotation",
                      .claimedBytes = auBytes};
const SndfileKind kVoc{
    .name = "Creative VOC",
    .container = SF_FORMAT_VOC,
    .mostChannels = 2,
    .mostBytes = kAnyBytes,
    .mostRate = kAnyRate,
    .encodings = kVocEncodings,
};
const SndfileKind kCaf{.name = "CAF",
                       .container = SF_FORMAT_CAF,
                       .mostChannels = kMaxChannels,
                       .mostBytes = kAnyBytes,
                       .mostRate = kAnyRate,
                       .encodings = everyWidth(kSignedEight),
                       .textKind = "info chunk",
                       .claimedBytes = cafBytes,
                       .readAnnotations = readCafMarkers,
                       .writeAnnotations = writeCafMarkers,
                       .mostMarkers = kMostChunkMarkers,
                       .refusesTruncated = true};
const SndfileKind kW64{.name = "Wave64",
                       .container = SF_FORMAT_W64,
                       .mostChannels = kMaxChannels,
                       .mostBytes = kAnyBytes,
                       .mostRate = kAnyRate,
                       .encodings = everyWidth(kUnsignedEight),
                       .claimedBytes = w64Bytes};
const SndfileKind kFlac{.name = "FLAC",
                        .container = SF_FORMAT_FLAC,
                        .mostChannels = 8,
                        .mostBytes = kAnyBytes,
                        .mostRate = kFlacRate,
                        .encodings = kFlacEncodings};
const SndfileKind kOpus{.name = "Opus",
                        .container = SF_FORMAT_OGG,
                        .mostChannels = 8,
                        .mostBytes = kAnyBytes,
                        .mostRate = 48000,
                        .encodings = onlyFloats(SF_FORMAT_OPUS),
                        .textKind = "Vorbis comments",
                        .refusal = opusRefusal,
                        .hasBitRate = true};
const SndfileKind kVorbis{.name = "Ogg Vorbis",
                          .container = SF_FORMAT_OGG,
                          .mostChannels = 8,
                          .mostBytes = kAnyBytes,
                          .mostRate = kVorbisRate,
                          .encodings = onlyFloats(SF_FORMAT_VORBIS),
                          .textKind = "Vorbis comments",
                          .hasBitRate = true};

StoredEncoding storedEncoding(const SndfileKind& kind, const CWave& wave) {
  const Encoding wanted = wantedEncoding(wave);
  if (const auto* same = encodingOf(kind, wanted)) return *same;
  for (size_t rung = rungOf(wanted); rung < std::size(kLadder); ++rung) {
    if (const auto* narrower = encodingOf(kind, kLadder[rung])) return *narrower;
  }
  return kind.encodings.front();  // a kind that has only wider ones
}

std::string refusalOf(const SndfileKind& kind, const CWave& wave) {
  const std::string holds = std::string(kind.name) + " holds at most ";
  if (wave.channels() > kind.mostChannels) {
    return holds +
           (kind.mostChannels == 1 ? "one channel" : std::to_string(kind.mostChannels) + " channels") +
           ", and this file has " + std::to_string(wave.channels()) + ".";
  }
  if (wave.sampleRate() > kind.mostRate) return holds + std::to_string(kind.mostRate) + " Hz.";
  if (sampleBytes(kind, wave) > kind.mostBytes) {
    return "The audio is too long for " + std::string(kind.name) + ", which holds 4 GiB at most.";
  }
  return kind.refusal != nullptr ? kind.refusal(wave) : std::string();
}

std::vector<std::string> lossesOf(const SndfileKind& kind, const CWave& wave) {
  if (!refusalOf(kind, wave).empty()) return {};  // a save that is refused loses nothing
  const AnnotationLimits limits{kind.mostMarkers, kind.mostLoops};
  std::vector<std::string> lost = annotationLosses(wave, limits);
  if (kind.longestLabel > 0 ? hasLongerLabel(wave, kind.longestLabel)
                            : kind.mostMarkers > 0 && hasLongerLabel(wave, 0)) {
    lost.push_back(kind.longestLabel > 0 ? "long labels of markers" : "labels of markers");
  }
  const Encoding wanted = wantedEncoding(wave);
  const Encoding stored = storedEncoding(kind, wave).encoding;
  if (!kind.hasBitRate && rungOf(stored) > rungOf(wanted)) {
    const bool floats = wanted == Encoding::float32 || wanted == Encoding::float64;
    lost.push_back(std::to_string(bitsOf(wanted)) + (floats ? "-bit floats: " : " bits: ") +
                   std::to_string(bitsOf(stored)) + (floats ? " bits are kept" : " are kept"));
  }
  return lost;
}

}  // namespace plumetta
