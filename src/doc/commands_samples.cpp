// SPDX-License-Identifier: GPL-3.0-or-later
// Single samples, drawn by hand.
#include "doc/command_groups.h"

namespace plumetta {
namespace {

std::optional<Refusal> checkSample(CommandCall& call) {
  const CWave& wave = call.doc.wave();
  const bool inside =
      call.frames(0) >= 0 && call.frames(0) < wave.frames() && call.integer(1) < wave.channels();
  return inside ? std::nullopt : std::optional(Refusal{});
}

std::optional<Refusal> runSample(CommandCall& call) {
  call.doc.wave().setSample(static_cast<int32_t>(call.frames(0)), static_cast<int>(call.integer(1)),
                            static_cast<float>(call.real(2)));
  return std::nullopt;
}

}  // namespace

std::vector<Command> sampleCommands() {
  return {
      {"sample",
       "",
       "",
       Menu::none,
       {positionalFrame("frame", "Position"), positionalInteger("channel", "Channel", 0, kMaxChannels - 1),
        positionalReal("value", "Value", "", -1, 1)},
       checkSample,
       undoAs<UndoKind::wholeFile>,
       Command::Lock::turns,
       runSample,
       [](CommandCall&) -> std::string { return "Sample moved"; },
       Command::Changes::samples}};
}

}  // namespace plumetta
