// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/wav_writer.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <vector>

#include "core/regions.h"
#include "formats/wav_encoding.h"

namespace plumetta {
namespace {

constexpr uint64_t kChunkHeaderBytes = 8;
constexpr uint32_t kFormatBytes = 16;
constexpr uint32_t kSamplerBytes = 36;
constexpr uint32_t kLoopBytes = 24;
constexpr uint32_t kCuePointBytes = 24;
constexpr uint32_t kEnvelopeHeaderBytes = 24;
constexpr uint32_t kEnvelopeChannelBytes = 14;
constexpr uint32_t kEnvelopePointBytes = 10;
constexpr uint32_t kLongSizesBytes = 28;
constexpr uint32_t kSizeElsewhere = 0xFFFFFFFF;  // what RF64 has in the fields of 32 bits

uint64_t padded(uint64_t size) { return size + size % 2; }

// Everything that goes into one file, so that all sizes are known before its first byte is written.
struct WavImage {
  const CWave& wave;
  int32_t firstFrame = 0;
  int64_t frames = 0;        // stored frames of the buffer
  int64_t silentFrames = 0;  // stored behind them
  uint16_t formatTag = kFormatPcm;
  SampleFormat encoding;
  CLoopPoints loops;
  CMarkerList markers;
  CVolumeEnvelope envelope;
  bool cueFirst = false;
  bool longSizes = false;  // RF64

  uint64_t dataBytes() const {
    return static_cast<uint64_t>(wave.bitsPerSample() / 8) * static_cast<uint64_t>(wave.channels()) *
           static_cast<uint64_t>(frames + silentFrames);
  }
  uint64_t loopBytes() const {
    return loops.hasLoops() ? kSamplerBytes + uint64_t{kLoopBytes} * static_cast<uint64_t>(loops.count()) : 0;
  }
  uint64_t cueBytes() const {
    return markers.empty() ? 0 : 4 + uint64_t{kCuePointBytes} * static_cast<uint64_t>(markers.count());
  }
  uint64_t envelopeBytes() const {
    if (!envelope.active()) return 0;
    uint64_t bytes = kEnvelopeHeaderBytes;
    for (int c = 0; c < envelope.channelCount(); ++c) {
      bytes += kEnvelopeChannelBytes +
               uint64_t{kEnvelopePointBytes} * static_cast<uint64_t>(envelope.pointCount(c));
    }
    return bytes;
  }
  // The size field of the whole file: everything behind it.
  uint64_t riffBytes() const {
    uint64_t bytes = 4 + kChunkHeaderBytes + kFormatBytes + kChunkHeaderBytes + padded(dataBytes());
    for (const uint64_t size : {loopBytes(), cueBytes(), envelopeBytes()}) {
      if (size > 0) bytes += kChunkHeaderBytes + padded(size);
    }
    for (const Chunk& chunk : wave.extraChunks) bytes += kChunkHeaderBytes + padded(chunk.data.size());
    if (longSizes) bytes += kChunkHeaderBytes + kLongSizesBytes;
    return bytes;
  }
};

void beginChunk(OutputStream& out, std::string_view id, uint64_t size) {
  out.write(id);
  out.writeLittle(static_cast<uint32_t>(size));
}

void writePad(OutputStream& out, uint64_t size) {
  if (size % 2 == 1) out.writeLittle(uint8_t{0});
}

void writeFormatChunk(OutputStream& out, const WavImage& image) {
  const CWave& wave = image.wave;
  const auto blockAlign = static_cast<uint32_t>(wave.bitsPerSample() / 8 * wave.channels());
  beginChunk(out, "fmt ", kFormatBytes);
  out.writeLittle(image.formatTag);
  out.writeLittle(static_cast<uint16_t>(wave.channels()));
  out.writeLittle(wave.sampleRate());
  out.writeLittle(blockAlign * wave.sampleRate());
  out.writeLittle(static_cast<uint16_t>(blockAlign));
  out.writeLittle(static_cast<uint16_t>(wave.bitsPerSample()));
}

bool writeDataChunk(OutputStream& out, const WavImage& image) {
  const CWave& wave = image.wave;
  // No data is told here in either kind: of a length of 0 elsewhere, readers take all that follows for data.
  const bool elsewhere = image.longSizes && image.dataBytes() > 0;
  beginChunk(out, "data", elsewhere ? kSizeElsewhere : image.dataBytes());
  const float* first = wave.samples() + static_cast<int64_t>(image.firstFrame) * wave.channels();
  auto result = encodeSamples(out, image.encoding, first, image.frames, wave.channels(), wave.progress);
  if (result == CodecResult::done && image.silentFrames > 0) {
    const std::vector<float> silence(static_cast<size_t>(image.silentFrames * wave.channels()), 0.0f);
    result = encodeSamples(out, image.encoding, silence.data(), image.silentFrames, wave.channels(), {});
  }
  writePad(out, image.dataBytes());
  return result != CodecResult::cancelled;
}

void writeLoopChunk(OutputStream& out, const WavImage& image) {
  if (!image.loops.hasLoops()) return;
  beginChunk(out, "smpl", image.loopBytes());
  const SamplerHeader& header = image.loops.header;
  const auto count = static_cast<uint32_t>(image.loops.count());
  for (const uint32_t field :
       {header.manufacturer, header.product, header.samplePeriod, header.midiUnityNote,
        header.midiPitchFraction, header.smpteFormat, header.smpteOffset, count, header.samplerData}) {
    out.writeLittle(field);
  }
  for (int i = 0; i < image.loops.count(); ++i) {
    const LoopRecord loop = image.loops.loop(i);
    out.writeLittle(loop.cuePointId);
    out.writeLittle(loop.type);
    out.writeLittle(loop.start);
    out.writeLittle(loop.end);
    out.writeLittle(loop.fraction);
    out.writeLittle(loop.playCount);
  }
}

void writeCueChunk(OutputStream& out, const WavImage& image) {
  if (image.markers.empty()) return;
  beginChunk(out, "cue ", image.cueBytes());
  out.writeLittle(static_cast<uint32_t>(image.markers.count()));
  for (const Marker& marker : image.markers) {
    out.writeLittle(marker.id);
    out.writeLittle(marker.position);
    out.write("data");
    out.writeLittle(uint32_t{0});  // chunk start
    out.writeLittle(uint32_t{0});  // block start
    out.writeLittle(marker.position);
  }
}

void writeEnvelopeChunk(OutputStream& out, const WavImage& image) {
  const CVolumeEnvelope& envelope = image.envelope;
  if (!envelope.active()) return;
  beginChunk(out, "otom", image.envelopeBytes());
  out.writeLittle(uint32_t{0});
  out.write("PLUMETTA");
  for (int i = 0; i < 3; ++i) out.writeLittle(uint32_t{0});
  for (int c = 0; c < envelope.channelCount(); ++c) {
    out.write("CH");
    out.writeLittle(static_cast<uint16_t>(c));
    out.writeLittle(static_cast<uint32_t>(envelope.pointCount(c)));
    out.writeLittle(envelope.flag(c));
    out.writeLittle(uint8_t{0});
    out.writeLittle(uint32_t{0});
    for (int i = 0; i < envelope.pointCount(c); ++i) {
      const EnvelopePoint point = envelope.point(i, c);
      out.writeLittle(point.position);
      out.writeFloat(point.value);
      out.writeLittle(static_cast<uint8_t>(point.kind));
      out.writeLittle(uint8_t{0});
    }
  }
  writePad(out, image.envelopeBytes());
}

void writeExtraChunks(OutputStream& out, const CWave& wave) {
  for (const Chunk& chunk : wave.extraChunks) {
    beginChunk(out, {chunk.id.data(), chunk.id.size()}, chunk.data.size());
    out.write(chunk.data.data(), chunk.data.size());
    writePad(out, chunk.data.size());
  }
}

void writeFileHeader(OutputStream& out, const WavImage& image) {
  if (!image.longSizes) {
    beginChunk(out, "RIFF", image.riffBytes());
    out.write("WAVE");
    return;
  }
  beginChunk(out, "RF64", kSizeElsewhere);
  out.write("WAVE");
  beginChunk(out, "ds64", kLongSizesBytes);
  out.writeLittle(image.riffBytes());
  out.writeLittle(image.dataBytes());
  out.writeLittle(static_cast<uint64_t>(image.frames + image.silentFrames));
  out.writeLittle(uint32_t{0});  // sizes of other chunks that have no room for them
}

bool writeImage(OutputStream& out, const WavImage& image) {
  writeFileHeader(out, image);
  writeFormatChunk(out, image);
  if (!writeDataChunk(out, image)) return false;
  if (image.cueFirst) writeCueChunk(out, image);
  writeLoopChunk(out, image);
  if (!image.cueFirst) writeCueChunk(out, image);
  writeEnvelopeChunk(out, image);
  writeExtraChunks(out, image.wave);
  return true;
}

SaveResult saveImage(FileSystem& files, const std::string& path, const WavImage& image, SyncToDisk sync) {
  if (!image.longSizes && image.riffBytes() > std::numeric_limits<uint32_t>::max()) {
    return SaveResult::failure(kTooLongForWav);
  }
  return SaveResult::from(
      writeAtomically(files, path, sync, [&](OutputStream& out) { return writeImage(out, image); }));
}

// Every loop that lies wholly in the range, relative to its start.
CLoopPoints loopsOfRange(const CLoopPoints& loops, int32_t from, int32_t to) {
  CLoopPoints inside;
  inside.header = loops.header;
  for (int i = 0; i < loops.count(); ++i) {
    LoopRecord loop = loops.loop(i);
    if (std::min(loop.start, loop.end) < from || std::max(loop.start, loop.end) > to) continue;
    loop.start -= from;
    loop.end -= from;
    inside.add(loop);
  }
  return inside;
}

// The whole buffer, with the frame that keeps the data chunk even.
WavImage wholeImage(const CWave& wave) {
  const uint16_t tag = storedFormatTag(wave.bitsPerSample(), wave.formatTag());
  WavImage image{wave,          0,
                 wave.frames(), wave.needsEvenFrame() ? 1 : 0,
                 tag,           *wavEncoding(wave.bitsPerSample(), tag),
                 wave.loops,    wave.markers,
                 wave.envelope, false};
  if (image.silentFrames > 0) image.envelope.setLength(wave.frames() + 1);
  return image;
}

SaveResult saveWhole(FileSystem& files, const std::string& path, const WavImage& image, SyncToDisk sync) {
  SaveResult result = saveImage(files, path, image, sync);
  result.addedEvenFrame = result.saved && image.silentFrames > 0;
  return result;
}

}  // namespace

bool fitsIntoWav(int64_t frames, int channels, int bitsPerSample) {
  return frames <= int64_t{std::numeric_limits<uint32_t>::max()} / (int64_t{channels} * bitsPerSample / 8);
}

SaveResult saveWav(FileSystem& files, const std::string& path, const CWave& wave, SyncToDisk sync) {
  return saveWhole(files, path, wholeImage(wave), sync);
}

SaveResult saveRf64(FileSystem& files, const std::string& path, const CWave& wave, SyncToDisk sync) {
  WavImage image = wholeImage(wave);
  image.longSizes = true;
  return saveWhole(files, path, image, sync);
}

SaveResult saveWavRange(FileSystem& files, const std::string& path, const CWave& wave, int32_t from,
                        int32_t to, SyncToDisk sync) {
  if (from < 0 || to < 0 || from >= wave.frames() || to >= wave.frames()) {
    return SaveResult::failure("The range lies outside the file.");
  }
  if (from > to) std::swap(from, to);
  int64_t length = static_cast<int64_t>(to) - from + 1;
  const bool evenSize = wave.bitsPerSample() == 8 || wave.bitsPerSample() == 24;
  if (wave.channels() % 2 == 1 && length % 2 == 1 && evenSize) {
    length += length < wave.frames() - 1 ? 1 : -1;
  }
  // A range is never companded: 8 bits are plain PCM here.
  const uint16_t tag = wave.bitsPerSample() == 8 ? static_cast<uint16_t>(kFormatPcm)
                                                 : storedFormatTag(wave.bitsPerSample(), wave.formatTag());
  const int64_t stored = std::min<int64_t>(length, wave.frames() - from);
  WavImage image{wave,
                 from,
                 stored,
                 length - stored,
                 tag,
                 *wavEncoding(wave.bitsPerSample(), tag),
                 loopsOfRange(wave.loops, from, to),
                 {},
                 {},
                 true};
  wave.markers.copyRangeTo(image.markers, from, to);
  return saveImage(files, path, image, sync);
}

SaveResult splitAtMarkers(FileSystem& files, const std::string& prefix, const CWave& wave, SyncToDisk sync) {
  const auto boundaries = regionBoundaries(wave);
  for (size_t i = 0; i + 1 < boundaries.size(); ++i) {
    char suffix[32];
    std::snprintf(suffix, sizeof suffix, "_M%3.3d.wav", static_cast<int>(i));
    const auto result = saveWavRange(files, prefix + suffix, wave, boundaries[i], boundaries[i + 1], sync);
    if (!result.saved) return result;
  }
  return {};
}

}  // namespace plumetta
