// SPDX-License-Identifier: GPL-3.0-or-later
// The volume envelope: its points, its life and its death.
#include <cstdio>

#include "doc/command_groups.h"

namespace plumetta {
namespace {

using Changes = Command::Changes;
using Lock = Command::Lock;

constexpr const char* kPointChanged = "Volume point changed";
constexpr const char* kDeleteQuestion = "Do you want to delete all the volume envelope?";

Parameter channelParameter() { return positionalInteger("channel", "Channel", 0, kMaxChannels - 1); }

// Playing reads the envelope under the audio lock, so every change of it waits for a moment without a reader.
template <class Change>
auto changeEnvelope(CommandCall& call, Change change) {
  const AudioLockHeld held(call.doc.services().audioLock);
  return change(call.doc.wave());
}

// A flat envelope with a channel for each of the audio's, where there is none yet.
void makeActive(CWave& wave) {
  if (wave.envelope.active() && wave.envelope.channelCount() == wave.channels()) return;
  wave.envelope.setLengthField(wave.frames());
  while (wave.envelope.channelCount() < wave.channels()) wave.envelope.addChannel();
}

std::optional<Refusal> needActive(CommandCall& call) {
  if (!call.doc.wave().envelope.active()) return Refusal{};
  return std::nullopt;
}

std::optional<Refusal> needInactive(CommandCall& call) {
  if (call.doc.wave().envelope.active()) return Refusal{};
  return needAudio(call);
}

// ---- Points ---------------------------------------------------------------------------------------------

enum PointArgument : size_t { kPosition, kValue, kChannel, kKind };

std::optional<Refusal> checkPoint(CommandCall& call) {
  const CWave& wave = call.doc.wave();
  const int64_t position = call.frames(kPosition);
  if (call.integer(kChannel) >= wave.channels() || position < 1 || position >= wave.frames())
    return Refusal{};
  const auto channel = static_cast<int>(call.integer(kChannel));
  for (int i = 0; i < wave.envelope.pointCount(channel); ++i) {
    if (wave.envelope.point(i, channel).position == position) return Refusal{};
  }
  // The end points of an envelope that is still to be made.
  if (!wave.envelope.active() && position == wave.frames() - 1) return Refusal{};
  return std::nullopt;
}

std::optional<Refusal> runPoint(CommandCall& call) {
  const auto position = static_cast<int32_t>(call.frames(kPosition));
  const auto value = static_cast<float>(call.real(kValue));
  const auto channel = static_cast<int>(call.integer(kChannel));
  const auto kind = static_cast<EnvelopeKind>(call.integer(kKind));
  const bool inserted = changeEnvelope(call, [&](CWave& wave) {
    makeActive(wave);
    return wave.envelope.insertPoint(position, value, channel, kind);
  });
  if (!inserted) return Refusal{};
  char text[96];
  std::snprintf(text, sizeof text, "Volume point added : ch=%d at %d (%2.2f)", channel, position, value);
  call.doc.prompter().status(text);
  return std::nullopt;
}

std::optional<Refusal> checkRemovePoint(CommandCall& call) {
  const CVolumeEnvelope& envelope = call.doc.wave().envelope;
  const int64_t index = call.integer(0);
  const int64_t last = envelope.pointCount(static_cast<int>(call.integer(1))) - 1;
  if (index <= 0 || index >= last) return Refusal{};
  return std::nullopt;
}

std::optional<Refusal> runRemovePoint(CommandCall& call) {
  const auto index = static_cast<int>(call.integer(0));
  const auto channel = static_cast<int>(call.integer(1));
  changeEnvelope(call, [&](CWave& wave) { wave.envelope.removePoint(index, channel); });
  char text[96];
  std::snprintf(text, sizeof text, "Volume point suppressed : ch=%d num=%d", channel, index);
  call.doc.prompter().status(text);
  return std::nullopt;
}

// ---- One point that is there ----------------------------------------------------------------------------

// Index and channel are the first two arguments of these commands.
int pointIndex(const CommandCall& call) { return static_cast<int>(call.integer(0)); }
int pointChannel(const CommandCall& call) { return static_cast<int>(call.integer(1)); }

std::optional<Refusal> checkExistingPoint(CommandCall& call) {
  if (pointIndex(call) >= call.doc.wave().envelope.pointCount(pointChannel(call))) return Refusal{};
  return std::nullopt;
}

bool isEndPoint(CommandCall& call) {
  const int count = call.doc.wave().envelope.pointCount(pointChannel(call));
  return pointIndex(call) == 0 || pointIndex(call) == count - 1;
}

void tellPointChanged(CommandCall& call) { call.doc.prompter().status(kPointChanged); }

// A point stays between its neighbours; the ends only move up and down.
std::optional<Refusal> checkMovePoint(CommandCall& call) {
  if (const auto refusal = checkExistingPoint(call)) return refusal;
  const CVolumeEnvelope& envelope = call.doc.wave().envelope;
  const int index = pointIndex(call);
  const int64_t position = call.frames(2);
  if (isEndPoint(call)) {
    if (position != envelope.point(index, pointChannel(call)).position) return Refusal{};
  } else if (position <= envelope.point(index - 1, pointChannel(call)).position ||
             position >= envelope.point(index + 1, pointChannel(call)).position) {
    return Refusal{};
  }
  return std::nullopt;
}

std::optional<Refusal> runMovePoint(CommandCall& call) {
  const auto position = static_cast<int32_t>(call.frames(2));
  changeEnvelope(call, [&](CWave& wave) {
    wave.envelope.setPosition(pointIndex(call), pointChannel(call), position);
    wave.envelope.setValue(pointIndex(call), pointChannel(call), static_cast<float>(call.real(3)));
  });
  tellPointChanged(call);
  return std::nullopt;
}

std::optional<Refusal> runPointKind(CommandCall& call) {
  const auto kind = static_cast<EnvelopeKind>(call.integer(2));
  changeEnvelope(call,
                 [&](CWave& wave) { wave.envelope.setKind(pointIndex(call), pointChannel(call), kind); });
  tellPointChanged(call);
  return std::nullopt;
}

std::string pointKindName(CommandCall& call) {
  switch (static_cast<EnvelopeKind>(call.integer(2))) {
    case EnvelopeKind::smooth:
      return EffectNames[effect::kVolumePointSmooth];
    case EnvelopeKind::hold:
      return EffectNames[effect::kVolumePointHold];
    case EnvelopeKind::curve:
      return EffectNames[effect::kVolumePointCurve];
    case EnvelopeKind::linear:
      break;
  }
  return EffectNames[effect::kVolumePointLinear];
}

std::optional<Refusal> runResetPoint(CommandCall& call) {
  constexpr float kUnity = 0.5f;
  changeEnvelope(call,
                 [&](CWave& wave) { wave.envelope.setValue(pointIndex(call), pointChannel(call), kUnity); });
  tellPointChanged(call);
  return std::nullopt;
}

// ---- The whole envelope ---------------------------------------------------------------------------------

std::optional<Refusal> runReset(CommandCall& call) {
  changeEnvelope(call, [](CWave& wave) {
    makeActive(wave);
    wave.envelope.reset();
  });
  return std::nullopt;
}

std::optional<Refusal> checkClear(CommandCall& call) {
  if (const auto refusal = needActive(call)) return refusal;
  if (!call.doc.prompter().question(kDeleteQuestion)) return Refusal{};
  return std::nullopt;
}

std::optional<Refusal> runClear(CommandCall& call) {
  changeEnvelope(call, [](CWave& wave) { wave.envelope.clear(); });
  return std::nullopt;
}

std::optional<Refusal> checkInvert(CommandCall& call) {
  if (call.integer(0) >= call.doc.wave().envelope.channelCount()) return Refusal{};
  return needActive(call);
}

std::optional<Refusal> runInvert(CommandCall& call) {
  const auto channel = static_cast<int>(call.integer(0));
  changeEnvelope(call, [&](CWave& wave) { wave.envelope.invert(channel); });
  return std::nullopt;
}

}  // namespace

std::vector<Command> envelopeCommands() {
  constexpr auto annotations = undoAs<UndoKind::annotations>;
  const Parameter index = positionalInteger("index", "Point", 0, kMaxFrames);
  const Parameter kind{"kind", "Kind", "", ParameterType::integer, false, int64_t{0}, 0, kEnvelopeKinds - 1,
                       ""};
  // clang-format off
  return {
      {"envelope-point", "", "", Menu::none,
       {positionalFrame("position", "Position"), positionalReal("value", "Value", "", 0, 1),
        channelParameter(), kind},
       checkPoint, annotations, Lock::none, runPoint, effectName<effect::kVolumePointAdded>, Changes::annotations},
      {"envelope-remove", "", "", Menu::none,
       {index, channelParameter()}, checkRemovePoint, annotations,
       Lock::none, runRemovePoint, effectName<effect::kVolumePointRemoved>, Changes::annotations},
      {"envelope-move", "", "", Menu::none,
       {index, channelParameter(), positionalFrame("position", "Position"),
        positionalReal("value", "Value", "", 0, 1)},
       checkMovePoint, annotations, Lock::none, runMovePoint,
       [](CommandCall&) -> std::string { return kPointChanged; }, Changes::annotations},
      {"envelope-kind", "", "", Menu::none,
       {index, channelParameter(), positionalInteger("kind", "Kind", 0, kEnvelopeKinds - 1)},
       checkExistingPoint, annotations, Lock::none, runPointKind, pointKindName, Changes::annotations},
      {"envelope-point-reset", "", "", Menu::none, {index, channelParameter()}, checkExistingPoint, annotations,
       Lock::none, runResetPoint, effectName<effect::kVolumePointReset>, Changes::annotations},
      {"envelope-create", "&Create volume envelope", "", Menu::volume, {}, needInactive, annotations, Lock::none,
       runReset, effectName<effect::kVolumeCreated>, Changes::annotations},
      {"envelope-reset", "&Flat volume envelope", "", Menu::volume, {}, needAudio, annotations, Lock::none, runReset,
       effectName<effect::kVolumeReset>, Changes::annotations},
      {"envelope-invert", "", "", Menu::none, {channelParameter()}, checkInvert, annotations, Lock::none, runInvert,
       effectName<effect::kVolumeReversed>, Changes::annotations},
      {"envelope-clear", "&Delete volume envelope", "", Menu::volume, {}, checkClear, annotations, Lock::none,
       runClear, effectName<effect::kVolumeDeleted>, Changes::annotations},
  };
  // clang-format on
}

}  // namespace plumetta
