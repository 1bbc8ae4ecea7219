// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/take_import.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "doc/command_groups.h"
#include "formats/sample_codec.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

enum Argument : size_t { kPath, kChannels, kAt, kRate, kBits, kUndoable };

constexpr int64_t kFramesPerTurn = 1 << 15;
constexpr SampleFormat kFloats{Encoding::float32, ByteOrder::little, SignType::isSigned};

std::string unableToOpen(const std::string& path, const std::string& reason) {
  return "Unable to open " + path + "\n" + reason;
}

int channelsOf(const CommandCall& call) { return static_cast<int>(call.integer(kChannels)); }

size_t frameBytes(int channels) { return static_cast<size_t>(channels) * sizeof(float); }

bool becomesStereo(const CommandCall& call) {
  return call.doc.wave().channels() == 1 && channelsOf(call) == 2;
}

std::optional<Refusal> check(CommandCall& call) {
  const CWave& wave = call.doc.wave();
  const int64_t at = call.frames(kAt);
  if (at < 0 || at > wave.frames()) return Refusal{};
  const std::string& path = call.text(kPath);
  std::string reason;
  const int64_t frames = framesOfTake(call.doc.services().files, path, channelsOf(call), reason);
  if (frames < 0) return Refusal{unableToOpen(path, reason)};
  if (!becomesStereo(call) && channelsOf(call) > wave.channels()) {
    return Refusal{"The recording has more channels than the document."};
  }
  if (frames > kMaxFrames - wave.frames()) return Refusal{kNoMemory};
  return std::nullopt;
}

std::optional<UndoKind> undoKind(CommandCall& call) {
  if (!call.boolean(kUndoable)) return std::nullopt;
  std::string ignored;
  const bool empty = framesOfTake(call.doc.services().files, call.text(kPath), channelsOf(call), ignored) < 1;
  return empty ? UndoKind::annotations : UndoKind::layout;
}

// The document's samples with the take among them, made beside those that may be playing.
class Assembly {
 public:
  Assembly(const CommandCall& call, int32_t at, int32_t room)
      : old_(call.doc.wave()),
        takeChannels_(channelsOf(call)),
        channels_(becomesStereo(call) ? 2 : old_.channels()),
        at_(at),
        room_(room) {}

  // Takes memory for all of it and copies what stands before the take. False when there is none.
  bool begin() {
    if (!block_.resize(bytesOf(int64_t{old_.frames()} + room_))) return false;
    copyOld(0, at_, 0);
    return true;
  }

  // The next frames of the take. Samples that are no numbers become silence.
  void add(const std::vector<float>& frames, int64_t count) {
    float* target = frame(at_ + added_);
    for (int64_t i = 0; i < count; ++i, target += channels_) {
      const float* source = frames.data() + i * takeChannels_;
      for (int c = 0; c < channels_; ++c) target[c] = sound(source, c);
    }
    added_ += static_cast<int32_t>(count);
  }

  // Copies what stands behind the take, which may have come out shorter.
  void finish() {
    copyOld(at_, old_.frames() - at_, added_);
    block_.resize(bytesOf(frames()));  // giving memory back can't lose samples
  }

  BlockMemory& block() { return block_; }
  int channels() const { return channels_; }
  int32_t frames() const { return old_.frames() + added_; }
  int32_t added() const { return added_; }
  int64_t faults() const { return faults_; }

 private:
  size_t bytesOf(int64_t frames) const { return static_cast<size_t>(frames) * frameBytes(channels_); }
  float* frame(int64_t index) { return static_cast<float*>(block_.data()) + index * channels_; }

  // Frames of the document, moved up by `shift`; one channel goes to both of a stereo layout.
  void copyOld(int32_t from, int32_t count, int32_t shift) {
    const int oldChannels = old_.channels();
    const float* source = old_.samples() + int64_t{from} * oldChannels;
    float* target = frame(int64_t{from} + shift);
    if (oldChannels == channels_) {
      std::copy_n(source, int64_t{count} * channels_, target);
    } else {
      for (int32_t i = 0; i < count; ++i) target = std::fill_n(target, channels_, source[i]);
    }
  }

  float sound(const float* source, int channel) {
    if (takeChannels_ > 1 && channel >= takeChannels_) return 0.0f;
    const float value = source[takeChannels_ == 1 ? 0 : channel];
    if (std::isfinite(value)) return value;
    if (channel < takeChannels_) ++faults_;
    return 0.0f;
  }

  const CWave& old_;
  int takeChannels_;
  int channels_;
  int32_t at_;
  int32_t room_;
  int32_t added_ = 0;
  int64_t faults_ = 0;
  BlockMemory block_;
};

// As much of the take as can be read. False when somebody has stopped it.
bool readInto(CommandCall& call, InputStream& in, int64_t frames, Assembly& assembly) {
  const ProgressScope progress(call.doc.prompter(), "Importing " + fileNameOf(call.text(kPath)));
  std::vector<float> floats(static_cast<size_t>(kFramesPerTurn) * static_cast<size_t>(channelsOf(call)));
  while (assembly.added() < frames) {
    const int64_t wanted = std::min(kFramesPerTurn, frames - assembly.added());
    int64_t got = 0;
    decodeSamples(in, kFloats, floats.data(), wanted, channelsOf(call), {}, got);
    assembly.add(floats, got);
    if (got < wanted) break;
    const auto fraction = static_cast<float>(assembly.added()) / static_cast<float>(frames);
    if (!progress.progress().report(fraction)) return false;
  }
  return true;
}

// The moment of the change. The document's old block is left in the assembly's place.
void exchange(CommandCall& call, Assembly& assembly, int32_t at) {
  CWave& wave = call.doc.wave();
  const bool stereo = becomesStereo(call);
  int32_t frames = assembly.frames();
  const AudioLockHeld held(call.doc.services().audioLock);
  const bool holdsAudio = wave.frames() > 0;
  int channels = wave.channels();
  int32_t none = 0;
  wave.exchangeBlock(call.replacedSamples, channels, none);
  if (stereo) wave.monoToStereo();  // of no frames: what travels with the audio follows
  channels = assembly.channels();
  wave.exchangeBlock(assembly.block(), channels, frames);
  if (holdsAudio) wave.markers.add(at);
  wave.markers.adjustForInsert(at, assembly.added());
  wave.loops.adjustForInsert(at, assembly.added());
  wave.envelope.adjustForInsert(at, assembly.added(), wave.frames());
}

void tellDamage(CommandCall& call, const Assembly& read, int64_t frames, uint64_t bytes) {
  std::string text;
  if (read.added() < frames) text += "\nNot all of it could be read.";
  if (bytes % frameBytes(channelsOf(call)) != 0) text += "\nIt ends in the middle of a frame.";
  if (read.faults() > 0) {
    text += "\nSamples that are no numbers became silence: " + std::to_string(read.faults()) + ".";
  }
  if (!text.empty()) call.doc.prompter().message(call.text(kPath) + text);
}

void takeOverFormat(CommandCall& call) {
  CWave& wave = call.doc.wave();
  if (call.integer(kBits) > 0) wave.setBitsPerSample(static_cast<int>(call.integer(kBits)));
  if (call.integer(kRate) > 0) wave.setSampleRate(static_cast<uint32_t>(call.integer(kRate)));
}

std::optional<Refusal> run(CommandCall& call) {
  std::error_code error;
  const auto file = call.doc.services().files.openForReading(call.text(kPath), error);
  if (file == nullptr) return Refusal{unableToOpen(call.text(kPath), error.message())};
  const auto at = static_cast<int32_t>(call.frames(kAt));
  CWave& wave = call.doc.wave();
  const uint64_t inFile = file->size() / frameBytes(channelsOf(call));
  if (inFile > static_cast<uint64_t>(kMaxFrames - wave.frames())) return Refusal{kNoMemory};
  const auto frames = static_cast<int32_t>(inFile);
  Assembly assembly(call, at, frames);
  if (frames > 0) {
    if (!assembly.begin()) return Refusal{kNoMemory};
    InputStream in(*file);
    if (!readInto(call, in, frames, assembly)) return Refusal{};
    if (assembly.added() == 0) return Refusal{unableToOpen(call.text(kPath), "Nothing of it could be read.")};
    assembly.finish();
    exchange(call, assembly, at);
  }
  tellDamage(call, assembly, frames, file->size());
  takeOverFormat(call);
  call.seconds = static_cast<double>(assembly.added()) / wave.sampleRate();
  return std::nullopt;
}

std::string historyName(CommandCall& call) {
  char text[64];
  std::snprintf(text, sizeof text, "Record : %2.1f seconds", call.seconds);
  return text;
}

Parameter argument(const char* key, ParameterType type, ParameterValue fallback, double minimum = 0,
                   double maximum = kMaxFrames) {
  return {key, "", "", type, true, std::move(fallback), minimum, maximum, ""};
}

const Command& takeCommand() {
  static const Command command{"import-raw",
                               "",
                               "",
                               Menu::none,
                               {argument("file", ParameterType::text, std::string{}),
                                argument("channels", ParameterType::integer, int64_t{2}, 1, kMaxChannels),
                                argument("at", ParameterType::frame, FrameOrTime{}),
                                argument("rate", ParameterType::integer, int64_t{0}),
                                argument("bits", ParameterType::integer, int64_t{0}),
                                argument("undoable", ParameterType::boolean, true)},
                               check,
                               undoKind,
                               Command::Lock::byItself,
                               run,
                               historyName,
                               Command::Changes::samples};
  return command;
}

}  // namespace

int64_t framesOfTake(FileSystem& files, const std::string& path, int channels, std::string& reason) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (file == nullptr) {
    reason = error.message();
    return -1;
  }
  return static_cast<int64_t>(file->size() / frameBytes(channels));
}

CommandOutcome importTake(CPlumettaDoc& doc, const TakeImport& take) {
  return runCommand(doc, takeCommand(),
                    {take.path, int64_t{take.channels}, take.at, int64_t{take.sampleRate},
                     int64_t{take.bitsPerSample}, take.undoable});
}

}  // namespace plumetta
