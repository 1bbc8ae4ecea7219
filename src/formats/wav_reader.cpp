// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/wav_reader.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "formats/sndfile_formats.h"
#include "formats/wav_encoding.h"
#include "platform/pages_ahead.h"

namespace plumetta {
namespace {

constexpr uint64_t kRiffHeaderBytes = 12;
constexpr uint64_t kChunkHeaderBytes = 8;
constexpr uint64_t kFormatBytes = 16;
constexpr uint64_t kExtensibleBytes = 24;
constexpr uint64_t kSubFormatBytes = 16;
constexpr uint64_t kBlockAdpcmBytes = 50;     // of a format chunk with a table of seven coefficients
constexpr uint16_t kSubFormatExtension = 22;  // extension bytes from which a sub-format is there
constexpr uint64_t kCuePointBytes = 24;
constexpr uint64_t kSamplerBytes = 36;
constexpr uint64_t kLoopBytes = 24;
constexpr uint64_t kEnvelopeHeaderBytes = 24;
constexpr uint64_t kEnvelopeChannelBytes = 14;
constexpr uint64_t kEnvelopePointBytes = 10;
constexpr uint32_t kFallbackRate = 44100;
constexpr uint32_t kSizeElsewhere = 0xFFFFFFFF;  // of an RF64 file: it stands in the "ds64" chunk
constexpr int kMostForeignChunks = 1000;

struct ChunkPlace {
  char id[4];
  uint64_t body;   // offset of the first byte behind the header
  uint64_t size;   // bytes of the body that the file really holds
  bool truncated;  // the header claims more

  bool is(const char* name) const { return std::memcmp(id, name, 4) == 0; }
};

bool isKnown(const ChunkPlace& chunk) {
  return chunk.is("fmt ") || chunk.is("data") || chunk.is("cue ") || chunk.is("smpl") || chunk.is("otom");
}

// What a program writes anew with every file: figures about the samples, and padding.
bool isPassing(const ChunkPlace& chunk) {
  for (const char* name : {"ETTA", "ds64", "fact", "PEAK", "JUNK", "junk", "PAD ", "FLLR"}) {
    if (chunk.is(name)) return true;
  }
  return false;
}

// The size of an RF64 file's data, which its own chunk has no room for; 0 of any other file.
uint64_t longDataBytes(InputStream& in) {
  char riff[4] = {}, id[4] = {};
  uint32_t size = 0, low = 0, high = 0;
  in.seek(0);
  in.read(riff, 4);
  in.seek(kRiffHeaderBytes);
  if (std::memcmp(riff, "RF64", 4) != 0 || in.read(id, 4) != 4 || std::memcmp(id, "ds64", 4) != 0) return 0;
  in.readLittle(size);
  in.skip(8);  // the size of the whole file
  if (!in.readLittle(low) || !in.readLittle(high)) return 0;
  return uint64_t{high} << 32 | low;
}

// Where the chunks lie, in file order; of those that are not known, the first ones.
std::vector<ChunkPlace> findChunks(InputStream& in) {
  std::vector<ChunkPlace> chunks;
  const uint64_t longBytes = longDataBytes(in);
  int unknown = 0;
  in.seek(kRiffHeaderBytes);
  while (in.remaining() >= kChunkHeaderBytes) {
    ChunkPlace chunk{};
    uint32_t claimed = 0;
    if (in.read(chunk.id, 4) != 4 || !in.readLittle(claimed)) break;
    // A format chunk is never shorter than its fields, whatever its size says.
    uint64_t wanted = chunk.is("fmt ") ? std::max<uint64_t>(claimed, kFormatBytes) : claimed;
    if (chunk.is("data") && claimed == kSizeElsewhere && longBytes > 0) wanted = longBytes;
    chunk.body = in.position();
    chunk.size = std::min(wanted, in.remaining());
    chunk.truncated = chunk.size < wanted;
    if (isKnown(chunk) || (!isPassing(chunk) && ++unknown <= kMostForeignChunks)) chunks.push_back(chunk);
    if (wanted > in.remaining()) break;
    in.skip(wanted + wanted % 2);
  }
  return chunks;
}

const ChunkPlace* firstNamed(const std::vector<ChunkPlace>& chunks, const char* id) {
  const auto found = std::find_if(chunks.begin(), chunks.end(), [&](const auto& c) { return c.is(id); });
  return found == chunks.end() ? nullptr : &*found;
}

struct WavFormat {
  uint16_t tag = 0;
  uint16_t channels = 0;
  uint32_t sampleRate = 0;
  uint16_t bits = 0;
};

// The fields of the format chunk; the tag of an extensible one is that of its sub-format.
std::optional<WavFormat> readFormatChunk(InputStream& in, const ChunkPlace& chunk) {
  WavFormat format;
  uint32_t byteRate = 0;
  uint16_t blockAlign = 0;
  in.seek(chunk.body);
  if (chunk.size < kFormatBytes) return std::nullopt;
  in.readLittle(format.tag);
  in.readLittle(format.channels);
  in.readLittle(format.sampleRate);
  in.readLittle(byteRate);
  in.readLittle(blockAlign);
  in.readLittle(format.bits);
  if (format.tag != kFormatExtensible) return format;
  format.tag = kFormatPcm;
  uint16_t extension = 0;
  if (chunk.size < kExtensibleBytes + kSubFormatBytes || !in.readLittle(extension)) return format;
  if (extension < kSubFormatExtension) return format;
  in.seek(chunk.body + kExtensibleBytes);
  in.readLittle(format.tag);  // the sub-format identifier begins with the plain tag
  return format;
}

// Microsoft's ADPCM has the tag of the plain four-bit codec, but comes in blocks that a table goes with.
bool isBlockAdpcm(const WavFormat& format, const ChunkPlace& chunk) {
  return format.tag == kFormatAdpcm && chunk.size >= kBlockAdpcmBytes;
}

bool isSupported(const WavFormat& format) {
  switch (format.tag) {
    case kFormatPcm:
    case kFormatFloat:
    case kFormatALaw:
    case kFormatMuLaw:
      break;
    case kFormatAdpcm:
      if (format.bits != 4) return false;
      break;
    default:
      return false;
  }
  const bool knownBits = format.bits == 8 || format.bits == 16 || format.bits == 24 || format.bits == 32 ||
                         format.bits == 64 || (format.bits == 4 && format.tag == kFormatAdpcm);
  return knownBits && format.channels >= 1 && format.channels <= kMaxChannels;
}

int64_t frameCount(const WavFormat& format, uint64_t bytes) {
  const auto size = static_cast<int64_t>(bytes);
  if (format.bits == 4) return size * 2 / format.channels;
  return size / format.channels / (format.bits / 8);
}

// What the buffer holds once the samples are floats.
void adoptFormat(CWave& wave, const WavFormat& format) {
  const int bits = format.bits == 4 ? 16 : format.bits;
  const bool companded = format.tag == kFormatALaw || format.tag == kFormatMuLaw;
  const bool floats = format.tag == kFormatFloat && (bits == 32 || bits == 64);
  wave.setBitsPerSample(companded && bits != 8 ? 16 : bits);
  wave.setFormatTag(floats || bits == 64 ? kFormatFloat : kFormatPcm);
  wave.setSampleRate(format.sampleRate);
}

LoadResult readSamples(InputStream& in, const ChunkPlace& chunk, const WavFormat& format, CWave& wave,
                       LoadResult result) {
  const int64_t frames = frameCount(format, chunk.size);
  wave.setLayout(wave.channels(), 0);
  if (frames > kMaxFrames) return LoadResult::tooLong();
  if (!wave.resize(frames, format.channels)) return LoadResult::outOfMemory();
  const auto encoding = wavEncoding(format.bits, format.tag);
  int64_t framesRead = frames;
  if (encoding) {
    const PagesAhead pages(wave.samples(), static_cast<size_t>(frames) * format.channels * sizeof(float));
    in.seek(chunk.body);
    const auto decoded =
        decodeSamples(in, *encoding, wave.samples(), frames, format.channels, wave.progress, framesRead);
    if (decoded == CodecResult::cancelled) return {LoadStatus::cancelled, {}, {}, {}};
  } else {
    std::fill_n(wave.samples(), frames * format.channels, 0.0f);
    result.warnings.push_back("The encoding of this file is not known: its samples are shown as silence.");
  }
  if (framesRead < frames) wave.resize(framesRead, format.channels);
  wave.setLayout(format.channels, static_cast<int32_t>(framesRead));
  if (chunk.truncated || framesRead < frames) {
    result.warnings.push_back("The file is truncated: only the audio that is there was loaded.");
  }
  return result;
}

LoadResult readOwnCodec(InputStream& in, const std::vector<ChunkPlace>& chunks, WavFormat format,
                        CWave& wave) {
  LoadResult result;
  if (format.sampleRate == 0) {
    format.sampleRate = kFallbackRate;
    result.warnings.push_back("The file names no sample rate: 44100 Hz is assumed.");
  }
  const ChunkPlace* data = firstNamed(chunks, "data");
  const ChunkPlace nothing{{'d', 'a', 't', 'a'}, in.size(), 0, true};
  result = readSamples(in, data != nullptr ? *data : nothing, format, wave, std::move(result));
  if (result.status == LoadStatus::loaded) adoptFormat(wave, format);
  return result;
}

void readCueChunk(InputStream& in, const ChunkPlace& chunk, CWave& wave) {
  wave.markers.clear();
  uint32_t claimed = 0;
  if (chunk.size < sizeof claimed || !in.readLittle(claimed)) return;
  const uint64_t count = std::min<uint64_t>(claimed, (chunk.size - sizeof claimed) / kCuePointBytes);
  wave.markers.reserve(static_cast<size_t>(count));
  for (uint64_t i = 0; i < count; ++i) {
    Marker marker;
    if (!in.readLittle(marker.id) || !in.readLittle(marker.position)) return;
    in.skip(kCuePointBytes - 8);
    wave.markers.append(std::move(marker));
  }
}

void readLoopChunk(InputStream& in, const ChunkPlace& chunk, CWave& wave) {
  wave.loops.clear();
  if (chunk.size < kSamplerBytes) return;
  SamplerHeader& header = wave.loops.header;
  uint32_t claimed = 0;
  for (uint32_t* field :
       {&header.manufacturer, &header.product, &header.samplePeriod, &header.midiUnityNote,
        &header.midiPitchFraction, &header.smpteFormat, &header.smpteOffset, &claimed, &header.samplerData}) {
    in.readLittle(*field);
  }
  const uint64_t count = std::min<uint64_t>(claimed, (chunk.size - kSamplerBytes) / kLoopBytes);
  for (uint64_t i = 0; i < std::min<uint64_t>(count, CLoopPoints::kMaxLoops); ++i) {
    LoopRecord loop;
    if (!in.readLittle(loop.cuePointId) || !in.readLittle(loop.type) || !in.readLittle(loop.start) ||
        !in.readLittle(loop.end) || !in.readLittle(loop.fraction) || !in.readLittle(loop.playCount)) {
      return;
    }
    wave.loops.add(loop);
  }
}

std::vector<EnvelopePoint> readEnvelopePoints(InputStream& in, uint64_t count) {
  std::vector<EnvelopePoint> points;
  points.reserve(static_cast<size_t>(count));
  for (uint64_t i = 0; i < count; ++i) {
    EnvelopePoint point;
    uint8_t kind = 0;
    if (!in.readLittle(point.position) || !in.readLittle(point.value) || !in.readLittle(kind)) break;
    in.skip(1);
    point.kind = static_cast<EnvelopeKind>(kind);
    points.push_back(point);
  }
  return points;
}

void readEnvelopeChunk(InputStream& in, const ChunkPlace& chunk, CWave& wave) {
  wave.envelope.clear();
  wave.envelope.setLengthField(wave.frames());
  if (chunk.size < kEnvelopeHeaderBytes + kEnvelopeChannelBytes || wave.frames() == 0) return;
  uint64_t left = chunk.size - kEnvelopeHeaderBytes;
  in.skip(kEnvelopeHeaderBytes);
  for (int channel = 0; channel < wave.channels(); ++channel) {
    wave.envelope.addChannel();
    uint32_t claimed = 0;
    uint8_t flag = 1;
    if (left < kEnvelopeChannelBytes) continue;  // a channel that isn't there stays flat
    left -= kEnvelopeChannelBytes;
    in.skip(4);
    in.readLittle(claimed);
    in.readLittle(flag);
    in.skip(5);
    const uint64_t count = std::min<uint64_t>(claimed, left / kEnvelopePointBytes);
    left -= count * kEnvelopePointBytes;
    if (count < claimed) left = 0;
    wave.envelope.adoptChannel(channel, readEnvelopePoints(in, count), flag);
  }
}

void readAnnotations(InputStream& in, const std::vector<ChunkPlace>& chunks, CWave& wave) {
  for (const ChunkPlace& chunk : chunks) {
    in.seek(chunk.body);
    if (chunk.is("cue ")) readCueChunk(in, chunk, wave);
    if (chunk.is("smpl")) readLoopChunk(in, chunk, wave);
    if (chunk.is("otom")) readEnvelopeChunk(in, chunk, wave);
  }
  wave.loops.clamp(wave.frames() - 1);
  wave.markers.clamp(wave.frames() - 1);
}

// What a foreign chunk's text is called; empty when it holds none.
std::string textKindOf(InputStream& in, const ChunkPlace& chunk) {
  if (chunk.is("bext") || chunk.is("iXML")) return {chunk.id, 4};
  if (chunk.is("id3 ") || chunk.is("ID3 ")) return "ID3";
  char list[4] = {};
  in.seek(chunk.body);
  if (!chunk.is("LIST") || in.read(list, 4) != 4) return {};
  return std::memcmp(list, "INFO", 4) == 0 ? "LIST/INFO" : "";
}

// Keeps the chunks of other programs ahead of the one that names ours, or tells what text is lost with them.
void readForeignChunks(InputStream& in, const std::vector<ChunkPlace>& chunks, bool keep, CWave& wave,
                       LoadResult& result) {
  int kept = 0;
  for (const ChunkPlace& place : chunks) {
    if (isKnown(place)) continue;
    if (!keep) {
      const std::string kind = textKindOf(in, place);
      const bool isNew = std::count(result.textKinds.begin(), result.textKinds.end(), kind) == 0;
      if (!kind.empty() && isNew) result.textKinds.push_back(kind);
      continue;
    }
    if (place.truncated) continue;
    Chunk chunk;
    std::memcpy(chunk.id.data(), place.id, chunk.id.size());
    chunk.data.resize(static_cast<size_t>(place.size));
    in.seek(place.body);
    if (in.read(chunk.data.data(), chunk.data.size()) == chunk.data.size()) {
      wave.extraChunks.insert(kept++, std::move(chunk));
    }
  }
}

}  // namespace

Likeness probeWav(const FileHead& head) {
  return head.has(0, "RIFF") && head.has(8, "WAVE") ? Likeness::certain : Likeness::none;
}

Likeness probeRf64(const FileHead& head) {
  return head.has(0, "RF64") && head.has(8, "WAVE") ? Likeness::certain : Likeness::none;
}

LoadResult loadWav(FileSystem& files, const std::string& path, const OpenOptions& options, CWave& wave) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  LoadResult result = readWav(*file, wave, options);
  wave.setFileName(path);
  return result;
}

LoadResult readWav(File& file, CWave& wave, const OpenOptions& options) {
  wave.loops.clear();
  wave.markers.clear();
  wave.envelope.clear();
  InputStream in(file);
  const auto chunks = findChunks(in);
  const ChunkPlace* formatChunk = firstNamed(chunks, "fmt ");
  if (formatChunk == nullptr) return LoadResult::failure("The file has no format chunk.");
  const auto format = readFormatChunk(in, *formatChunk);
  if (!format || !isSupported(*format)) {
    wave.setFormatTag(kFormatPcm);
    if (format && format->tag == kFormatMpegLayer3) return {LoadStatus::mpegInside, {}, {}, {}};
    return LoadResult::failure("The format of this WAV file is not supported.");
  }
  LoadResult result;
  if (isBlockAdpcm(*format, *formatChunk)) {
    in.seek(0);
    result = loadSndfile(kWav, in, std::nullopt, wave);
  } else {
    result = readOwnCodec(in, chunks, *format, wave);
  }
  if (result.status != LoadStatus::loaded) return result;
  readAnnotations(in, chunks, wave);
  readForeignChunks(in, chunks, options.keepForeignChunks, wave, result);
  return result;
}

}  // namespace plumetta
