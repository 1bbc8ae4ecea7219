// SPDX-License-Identifier: GPL-3.0-or-later
// Test signals, put where the person wants them.
#include <cmath>
#include <random>

#include "doc/command_groups.h"
#include "doc/long_work.h"
#include "dsp/place_signal.h"
#include "dsp/synthesis.h"

namespace plumetta {
namespace {

constexpr double kLongestSeconds = 4294967296.0;
constexpr double kLargestNumber = 1e15;
constexpr double kLoudest = 10.0;
constexpr int64_t kFreeType = 13;
constexpr const char* kWrongType = "The type must lie between 0 and 14 and must not be 13";

enum SynthesisArgument : size_t { kType, kHz, kSeconds, kVolume, kPosition, kMix };
enum PositionType : int64_t { kAtStart = 0, kAtEnd = 1, kAtCursor = 2 };

std::vector<ParameterChoice> signalTypes(const CPlumettaDoc&) {
  return {{0, "Sine"},
          {1, "Square"},
          {2, "Triangle"},
          {3, "Sawtooth"},
          {4, "Pulse"},
          {5, "White noise"},
          {6, "Pink noise"},
          {7, "Brown noise"},
          {8, "Silence"},
          {9, "Two tones (frequency and 6/5 of it)"},
          {10, "Linear sweep (20 Hz to 20 kHz)"},
          {11, "Exponential sweep (20 Hz to 20 kHz)"},
          {12, "DTMF (dials the number in Frequency)"},
          {14, "Impulse train"}};
}

std::vector<ParameterChoice> positionTypes(const CPlumettaDoc&) {
  return {{kAtStart, "At the start"}, {kAtEnd, "At the end"}, {kAtCursor, "At the cursor"}};
}

std::vector<ParameterChoice> mixTypes(const CPlumettaDoc&) {
  return {{static_cast<int64_t>(Placement::insert), "Insert"},
          {static_cast<int64_t>(Placement::mix), "Mix with what is there"},
          {static_cast<int64_t>(Placement::replace), "Replace what is there"}};
}

std::vector<Parameter> synthesisParameters() {
  return {
      {"type", "Type", "", ParameterType::integer, true, int64_t{0}, 0, 14, kWrongType, "Type", signalTypes},
      {"hz", "Frequency", "Hz", ParameterType::real, false, 1000.0, 0, kLargestNumber,
       "The frequency must not be negative", "Frequency"},
      {"seconds", "Duration", "seconds", ParameterType::real, false, 1.0, 0, kLongestSeconds,
       "The duration must lie between 0 and 4294967296 seconds", "Duration"},
      {"volume", "Volume", "of full scale", ParameterType::real, false, 1.0, 0, kLoudest,
       "The volume must lie between 0 and 10", "Volume"},
      {"position", "Position", "", ParameterType::integer, false, int64_t{kAtStart}, kAtStart, kAtCursor,
       "The position must be 0 (start), 1 (end) or 2 (cursor)", "Position Type", positionTypes},
      {"mix", "Mode", "", ParameterType::integer, false, int64_t{0}, 0, 2,
       "The mix type must be 0 (insert), 1 (mix) or 2 (replace)", "Mix Type", mixTypes},
  };
}

SynthesisType typeOf(const CommandCall& call) { return static_cast<SynthesisType>(call.integer(kType)); }
Placement placementOf(const CommandCall& call) { return static_cast<Placement>(call.integer(kMix)); }

int64_t lengthFrames(const CommandCall& call) {
  return FrameOrTime{call.real(kSeconds), true}.frames(call.doc.wave().sampleRate());
}

int32_t positionOf(const CommandCall& call) {
  if (call.integer(kPosition) == kAtStart) return 0;
  if (call.integer(kPosition) == kAtEnd) return call.doc.wave().frames();
  return call.doc.clampFrame(call.doc.view().cursor);
}

std::optional<Refusal> checkFrequency(const CommandCall& call) {
  const SynthesisType type = typeOf(call);
  if (canSynthesize(type, call.real(kHz), call.doc.wave().sampleRate())) return std::nullopt;
  if (type == SynthesisType::dtmf) {
    return Refusal{"DTMF needs a number of at most 15 digits and a sample rate above 2954 Hz", true};
  }
  if (type == SynthesisType::twoTone) {
    return Refusal{"Both tones must lie between 0.001 Hz and half the sample rate", true};
  }
  return Refusal{"The frequency must lie between 0.001 Hz and half the sample rate", true};
}

std::optional<Refusal> checkSynthesis(CommandCall& call) {
  if (call.integer(kType) == kFreeType) return Refusal{kWrongType, true};
  if (const auto refusal = checkFrequency(call)) return refusal;
  const int64_t length = lengthFrames(call);
  if (length < 1) return Refusal{"At least one frame is needed", true};
  const int64_t before = placementOf(call) == Placement::insert ? call.doc.wave().frames() : positionOf(call);
  if (length > kMaxFrames - before) return Refusal{"No file can become that long", true};
  return std::nullopt;
}

std::optional<Refusal> runSynthesis(CommandCall& call) {
  CPlumettaDoc& doc = call.doc;
  const SynthesisType type = typeOf(call);
  CWave signal;
  const int channels = isNoise(type) ? std::max(doc.wave().activeCount(), 1) : 1;
  constexpr int kFloatBits = 32;
  if (!signal.create(doc.wave().sampleRate(), channels, kFloatBits, lengthFrames(call), kFormatFloat)) {
    return Refusal{kNoMemory};
  }
  LongWork work(doc.prompter(), "Synthesis");
  const WaveReports reports(signal, work);
  synthesize(signal, type, static_cast<float>(call.real(kVolume)), call.real(kHz), std::random_device{}());
  if (work.cancelled()) return Refusal{};
  const int32_t position = positionOf(call);
  {
    const AudioLockHeld held(doc.services().audioLock);
    if (!placeSignal(doc.wave(), signal, position, placementOf(call))) return Refusal{kNoMemory};
  }
  doc.select(position, int64_t{position} + signal.frames() - 1);
  doc.setCursor(position);
  return std::nullopt;
}

}  // namespace

std::vector<Command> synthesisCommands() {
  return {
      {"synthesis", "&Simple synthesis", "", Menu::generate, synthesisParameters(), checkSynthesis,
       undoAs<UndoKind::layout>, Command::Lock::none, runSynthesis,
       [](CommandCall&) -> std::string { return "Synthesis"; }, Command::Changes::samples, 0, "Synthesis"},
  };
}

}  // namespace plumetta
