// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/s1000_file.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "formats/losses.h"
#include "formats/plain_samples.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

constexpr SampleFormat kWords{Encoding::pcm16, ByteOrder::little, SignType::isSigned};
constexpr size_t kHeaderBytes = 150;
constexpr uint8_t kSampleId = 3;
constexpr uint8_t kRateIsValid = 128;
constexpr size_t kNameLength = 12;
constexpr size_t kMaxLoops = 8;
constexpr uint16_t kHoldForever = 9999;  // loop time, else in ms
// What the sampler does at the end of a loop; from kLoopNever on it plays no loop.
enum LoopMode : uint8_t { kLoopInRelease = 0, kLoopNever = 2, kPlayToEnd = 3 };

// Where the fields stand.
enum Offset : size_t {
  kIdAt = 0,
  kBandwidthAt = 1,
  kRootNoteAt = 2,
  kNameAt = 3,
  kRateValidAt = 15,
  kActiveLoopsAt = 16,
  kLoopModeAt = 19,
  kWordCountAt = 26,
  kStartAt = 30,
  kEndAt = 34,
  kLoopsAt = 38,
  kRateAt = 138,
};
constexpr size_t kLoopBytes = 12;

// The sampler's own character set: a character's place is its code.
constexpr std::string_view kCharacters = "0123456789 ABCDEFGHIJKLMNOPQRSTUVWXYZ#+-.";

struct SamplerLoop {
  uint32_t marker;      // the word at which it jumps back
  uint32_t wordLength;  // by so many words
};

struct S1000Header {
  uint8_t rootNote = 60;
  std::string name;
  std::vector<SamplerLoop> loops;
  uint32_t words = 0;
  uint16_t sampleRate = 0;
};

template <class T>
T littleAt(const std::vector<uint8_t>& bytes, size_t at) {
  T value = 0;
  for (size_t i = sizeof(T); i-- > 0;) value = static_cast<T>(value << 8 | bytes[at + i]);
  return value;
}

std::string nameIn(const std::vector<uint8_t>& bytes) {
  std::string name;
  for (size_t i = kNameAt; i < kNameAt + kNameLength; ++i) name += kCharacters[bytes[i]];
  name.erase(name.find_last_not_of(' ') + 1);
  return name;
}

bool looksLikeHeader(const std::vector<uint8_t>& bytes) {
  if (bytes.size() < kHeaderBytes || bytes[kIdAt] != kSampleId || bytes[kBandwidthAt] > 1) return false;
  const auto named = [&](size_t i) { return bytes[kNameAt + i] < kCharacters.size(); };
  for (size_t i = 0; i < kNameLength; ++i) {
    if (!named(i)) return false;
  }
  return bytes[kRootNoteAt] < 128 && bytes[kRateValidAt] == kRateIsValid &&
         bytes[kActiveLoopsAt] <= kMaxLoops && bytes[kLoopModeAt] <= kPlayToEnd;
}

S1000Header headerIn(const std::vector<uint8_t>& bytes) {
  S1000Header header;
  header.rootNote = bytes[kRootNoteAt];
  header.name = nameIn(bytes);
  header.words = littleAt<uint32_t>(bytes, kWordCountAt);
  header.sampleRate = littleAt<uint16_t>(bytes, kRateAt);
  const size_t loops = bytes[kLoopModeAt] < kLoopNever ? bytes[kActiveLoopsAt] : 0;
  for (size_t i = 0; i < loops; ++i) {
    const size_t at = kLoopsAt + i * kLoopBytes;
    // Between the two stand 65536ths of a word, which are less than a frame.
    header.loops.push_back({littleAt<uint32_t>(bytes, at), littleAt<uint32_t>(bytes, at + 6)});
  }
  return header;
}

void addLoops(const S1000Header& header, CWave& wave) {
  wave.loops.header.midiUnityNote = header.rootNote;
  for (const SamplerLoop& loop : header.loops) {
    const bool inside = loop.wordLength > 0 && loop.wordLength <= loop.marker &&
                        loop.marker <= static_cast<uint32_t>(wave.frames());
    if (!inside) continue;
    LoopRecord record;
    record.cuePointId = static_cast<uint32_t>(wave.loops.count());
    record.start = static_cast<int32_t>(loop.marker - loop.wordLength);
    record.end = static_cast<int32_t>(loop.marker - 1);
    wave.loops.add(record);
  }
}

uint8_t codeOf(char character) {
  const auto upper = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
  const size_t place = kCharacters.find(upper);
  return static_cast<uint8_t>(place == std::string_view::npos ? kCharacters.find('-') : place);
}

template <class T>
void putLittle(std::vector<uint8_t>& bytes, size_t at, T value) {
  for (size_t i = 0; i < sizeof(T); ++i) bytes[at + i] = static_cast<uint8_t>(value >> 8 * i);
}

std::vector<uint8_t> headerFor(const CWave& wave, const std::string& path) {
  std::vector<uint8_t> bytes(kHeaderBytes);
  const auto frames = static_cast<uint32_t>(wave.frames());
  bytes[kIdAt] = kSampleId;
  bytes[kBandwidthAt] = wave.sampleRate() > 22050 ? 1 : 0;
  const uint32_t note = wave.loops.header.midiUnityNote;
  bytes[kRootNoteAt] = static_cast<uint8_t>(note >= 1 && note < 128 ? note : 60);
  const std::string name = fileNameOf(path).substr(0, fileNameOf(path).find_last_of('.'));
  for (size_t i = 0; i < kNameLength; ++i) bytes[kNameAt + i] = codeOf(i < name.size() ? name[i] : ' ');
  bytes[kRateValidAt] = kRateIsValid;
  bytes[kLoopModeAt] = kLoopNever;
  putLittle(bytes, kWordCountAt, frames);
  putLittle(bytes, kEndAt, frames > 0 ? frames - 1 : 0);
  putLittle(bytes, kRateAt, static_cast<uint16_t>(wave.sampleRate()));
  const size_t loops = std::min(static_cast<size_t>(wave.loops.count()), kMaxLoops);
  for (size_t i = 0; i < loops; ++i) {
    const LoopRecord loop = wave.loops.loop(static_cast<int>(i));
    const size_t at = kLoopsAt + i * kLoopBytes;
    putLittle(bytes, at, static_cast<uint32_t>(loop.end + 1));
    putLittle(bytes, at + 6, static_cast<uint32_t>(loop.end - loop.start + 1));
    putLittle(bytes, at + 10, kHoldForever);
    bytes[kLoopModeAt] = kLoopInRelease;
  }
  bytes[kActiveLoopsAt] = static_cast<uint8_t>(loops);
  return bytes;
}

}  // namespace

Likeness probeS1000(const FileHead& head) {
  if (!looksLikeHeader(head.bytes)) return Likeness::none;
  const uint64_t claimed = kHeaderBytes + 2 * uint64_t{littleAt<uint32_t>(head.bytes, kWordCountAt)};
  return claimed == head.size ? Likeness::certain : Likeness::possible;
}

LoadResult loadS1000(FileSystem& files, const std::string& path, CWave& wave) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  InputStream in(*file);
  std::vector<uint8_t> bytes(kHeaderBytes);
  if (in.read(bytes.data(), bytes.size()) != kHeaderBytes || !looksLikeHeader(bytes)) {
    return LoadResult::failure("The header of this sample is damaged.");
  }
  const S1000Header header = headerIn(bytes);
  const auto frames = static_cast<int64_t>(std::min<uint64_t>(header.words, in.remaining() / 2));
  LoadResult result = readPlainSamples(in, {header.sampleRate, 1, kWords, frames}, wave);
  if (result.status != LoadStatus::loaded) return result;
  if (frames < header.words) {
    result.warnings.push_back("The file is truncated: only the audio that is there was loaded.");
  }
  addLoops(header, wave);
  if (!header.name.empty()) result.textKinds.push_back("sample name");
  wave.setFileName(path);
  return result;
}

SaveResult saveS1000(FileSystem& files, const std::string& path, const CWave& wave,
                     const SaveOptions& options) {
  if (wave.channels() != 1) return SaveResult::failure("An S1000 sample has one channel.");
  if (wave.sampleRate() > 0xFFFF) return SaveResult::failure("An S1000 sample has at most 65535 Hz.");
  return SaveResult::from(writeAtomically(files, path, options.sync, [&](OutputStream& out) {
    const std::vector<uint8_t> header = headerFor(wave, path);
    out.write(header.data(), header.size());
    return encodeSamples(out, kWords, wave.samples(), wave.frames(), 1, wave.progress) !=
           CodecResult::cancelled;
  }));
}

std::vector<std::string> lossesOfS1000(const CWave& wave) {
  AnnotationLimits limits;
  limits.loops = kMaxLoops;
  std::vector<std::string> lost = annotationLosses(wave, limits);
  if (wave.bitsPerSample() > 16) {
    lost.push_back(std::to_string(wave.bitsPerSample()) + " bits: 16 are kept");
  }
  return lost;
}

}  // namespace plumetta
