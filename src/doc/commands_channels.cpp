// SPDX-License-Identifier: GPL-3.0-or-later
// The channel operations, by number.
#include <array>

#include "doc/command_groups.h"
#include "dsp/channel_layout.h"

namespace plumetta {
namespace {

using Lock = Command::Lock;

// The operations' numbers; 2 to 9 keep the channel of their number less two.
enum Operation {
  kMixActive = 0,
  kMixAll = 1,
  kKeepFirst = 2,
  kKeepLast = 9,
  kToStereo = 10,
  kAdd = 11,
  kDelete = 12,
  kInsert = 13,
  kClone = 14,
  kSwap = 15,
};

// clang-format off
constexpr std::array<const char*, 16> kMenuTexts{
    "Mix &active channels to mono", "&Mix all channels to mono", "Keep &left only", "Keep &right only",
    "Keep &center only",            "Keep &fourth only",         "Keep &back left only", "Keep back ri&ght only",
    "Keep auxiliary left &only",    "Keep auxiliary rig&ht only", "Convert to &stereo", "Add a cha&nnel",
    "&Delete channel",           "&Insert channel",        "&Clone channel",    "S&wap channel"};
// clang-format on

// The channel that is meant; checked before it is used.
int channelOf(const CommandCall& call) {
  return call.command.number >= kDelete ? static_cast<int>(call.integer(0)) : 0;
}

std::optional<Refusal> checkMono(const CommandCall& call, const CWave& wave) {
  const int operation = call.command.number;
  if (wave.channels() == 1) return Refusal{"File is already MONO"};
  if (operation >= kKeepFirst && operation - kKeepFirst >= wave.channels()) return Refusal{"Channel error"};
  if (operation == kMixActive && wave.activeCount() == 0) return Refusal{};
  return std::nullopt;
}

std::optional<Refusal> checkChannel(CommandCall& call) {
  const CWave& wave = call.doc.wave();
  const int operation = call.command.number;
  if (operation <= kKeepLast) return checkMono(call, wave);
  if (operation == kToStereo && wave.channels() != 1) return Refusal{"Conversion only for MONO file"};
  const bool grows = operation == kAdd || operation == kInsert || operation == kClone;
  if (operation == kSwap && wave.channels() == 1) return Refusal{"Unable to swap MONO file"};
  if (operation >= kDelete) {
    const int last = operation == kInsert ? wave.channels() : wave.channels() - 1;
    if (call.integer(0) < 0 || call.integer(0) > last) return Refusal{};
  }
  if (grows && wave.channels() >= kMaxChannels) return Refusal{"Channel number exceeded"};
  if (operation == kDelete && wave.channels() == 1) return Refusal{};
  return std::nullopt;
}

bool operate(CWave& wave, int operation, int channel) {
  switch (operation) {
    case kMixActive:
      return wave.mixDownToMono(kMixActiveChannels);
    case kMixAll:
      return wave.mixDownToMono(kMixAllChannels);
    case kToStereo:
      return wave.monoToStereo();
    case kAdd:
      return insertChannel(wave, wave.channels());
    case kDelete:
      return wave.removeChannel(channel);
    case kInsert:
      return insertChannel(wave, channel);
    case kClone:
      return cloneChannel(wave, channel);
    case kSwap:
      return swapWithNextChannel(wave, channel);
    default:
      return wave.mixDownToMono(operation - kKeepFirst);
  }
}

std::optional<Refusal> runChannel(CommandCall& call) {
  if (operate(call.doc.wave(), call.command.number, channelOf(call))) return std::nullopt;
  return Refusal{call.command.number == kAdd ? "Channel insertion failed" : kNoMemory};
}

std::string channelName(CommandCall& call) {
  return EffectNames[static_cast<size_t>(effect::kFirstChannelOperation + call.command.number)];
}

std::vector<ParameterChoice> presentChannels(const CPlumettaDoc& doc) {
  std::vector<ParameterChoice> choices;
  const int count = doc.wave().channels();
  for (int i = 0; i < count; ++i) {
    const char* side = count != 2 ? "" : i == 0 ? " (left)" : " (right)";
    choices.push_back({i, std::to_string(i + 1) + side});
  }
  return choices;
}

std::vector<ParameterChoice> placesForChannel(const CPlumettaDoc& doc) {
  auto choices = presentChannels(doc);
  for (ParameterChoice& choice : choices) choice.label = "Before channel " + choice.label;
  choices.push_back({doc.wave().channels(), "After the last channel"});
  return choices;
}

// Of the operations on one channel; the others ask for nothing.
std::vector<Parameter> parametersOf(int operation) {
  if (operation < kDelete) return {};
  const bool place = operation == kInsert;
  return {{"index", place ? "Position" : "Channel", "", ParameterType::integer, false, int64_t{0}, -1e9, 1e9,
           "", "", place ? placesForChannel : presentChannels}};
}

}  // namespace

std::vector<Command> channelCommands() {
  static const auto ids = [] {
    std::array<std::string, kMenuTexts.size()> all;
    for (size_t i = 0; i < all.size(); ++i) all[i] = "channel-" + std::to_string(i);
    return all;
  }();
  std::vector<Command> commands;
  for (size_t i = 0; i < kMenuTexts.size(); ++i) {
    const auto operation = static_cast<int>(i);
    commands.push_back({ids[i].c_str(), kMenuTexts[i], "", Menu::channel, parametersOf(operation),
                        checkChannel, undoAs<UndoKind::layout>, Lock::throughout, runChannel, channelName,
                        Command::Changes::samples, operation, "Channel"});
  }
  return commands;
}

}  // namespace plumetta
