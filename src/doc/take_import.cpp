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
  if (frames < 0) return Refusal{"Unable to open " + path + "\n" + reason};
  if (!becomesStereo(call) && channelsOf(call) > wave.channels()) {
    return Refusal{"The recording has more channels than the document."};
  }
  if (frames > kMaxFrames - wave.frames()) return Refusal{kNoMemory};
  return std::nullopt;
}

std::optional<UndoKind> undoKind(CommandCall& call) {
  if (!call.boolean(kUndoable)) return std::nullopt;
  return UndoKind::layout;
}

// The document's part: the stereo layout, the marker and a silent gap for the take.
bool openGap(CommandCall& call, int32_t at, int32_t frames) {
  CWave& wave = call.doc.wave();
  const AudioLockHeld held(call.doc.services().audioLock);
  const bool holdsAudio = wave.frames() > 0;
  if (becomesStereo(call) && !wave.monoToStereo()) return false;
  if (holdsAudio) wave.markers.add(at);
  return wave.insertSilence(at, frames);
}

// Puts frames into the gap from `first` on. Samples that are no numbers become silence; returns how many.
int64_t placeFrames(CommandCall& call, const std::vector<float>& frames, int64_t first, int64_t count) {
  CWave& wave = call.doc.wave();
  const int from = channelsOf(call);
  const int to = wave.channels();
  int64_t faults = 0;
  const AudioLockHeld held(call.doc.services().audioLock);
  float* target = wave.samples() + static_cast<size_t>(first) * static_cast<size_t>(to);
  for (int64_t frame = 0; frame < count; ++frame, target += to) {
    const float* source = frames.data() + static_cast<size_t>(frame) * static_cast<size_t>(from);
    for (int c = 0; c < to; ++c) {
      const float value = from == 1 ? source[0] : c < from ? source[c] : 0.0f;
      target[c] = std::isfinite(value) ? value : 0.0f;
      if (c < from && !std::isfinite(value)) ++faults;
    }
  }
  return faults;
}

struct ReadTake {
  int64_t frames = 0;
  int64_t faults = 0;
  bool cancelled = false;
};

ReadTake readInto(CommandCall& call, InputStream& in, int64_t at, int64_t frames) {
  ReadTake read;
  const ProgressScope progress(call.doc.prompter(), "Importing " + fileNameOf(call.text(kPath)));
  std::vector<float> floats(static_cast<size_t>(kFramesPerTurn) * static_cast<size_t>(channelsOf(call)));
  while (read.frames < frames) {
    const int64_t wanted = std::min(kFramesPerTurn, frames - read.frames);
    int64_t got = 0;
    decodeSamples(in, kFloats, floats.data(), wanted, channelsOf(call), {}, got);
    read.faults += placeFrames(call, floats, at + read.frames, got);
    read.frames += got;
    if (got < wanted) break;
    read.cancelled =
        !progress.progress().report(static_cast<float>(read.frames) / static_cast<float>(frames));
    if (read.cancelled) break;
  }
  return read;
}

void tellDamage(CommandCall& call, const ReadTake& read, int64_t frames, uint64_t bytes) {
  std::string text;
  if (read.frames < frames) text += "\nNot all of it could be read.";
  if (bytes % frameBytes(channelsOf(call)) != 0) text += "\nIt ends in the middle of a frame.";
  if (read.faults > 0) {
    text += "\nSamples that are no numbers became silence: " + std::to_string(read.faults) + ".";
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
  if (file == nullptr) return Refusal{"Unable to open " + call.text(kPath) + "\n" + error.message()};
  const auto at = static_cast<int32_t>(call.frames(kAt));
  CWave& wave = call.doc.wave();
  const uint64_t inFile = file->size() / frameBytes(channelsOf(call));
  if (inFile > static_cast<uint64_t>(kMaxFrames - wave.frames())) return Refusal{kNoMemory};
  const auto frames = static_cast<int32_t>(inFile);
  ReadTake read;
  if (frames > 0) {
    call.samplesTouched = call.boolean(kUndoable);
    if (!openGap(call, at, frames)) return Refusal{kNoMemory};
    InputStream in(*file);
    read = readInto(call, in, at, frames);
    if (read.cancelled) return Refusal{};
  }
  if (read.frames < frames) {
    const AudioLockHeld held(call.doc.services().audioLock);
    wave.deleteRange(at + static_cast<int32_t>(read.frames), at + frames - 1);
  }
  tellDamage(call, read, frames, file->size());
  takeOverFormat(call);
  call.seconds = static_cast<double>(read.frames) / wave.sampleRate();
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
