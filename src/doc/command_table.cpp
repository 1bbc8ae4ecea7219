// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdio>
#include <iterator>

#include "doc/command_groups.h"

namespace plumetta {

const std::vector<Command>& commandTable() {
  static const std::vector<Command> table = [] {
    std::vector<Command> all;
    for (auto group :
         {editCommands(), mixCommands(), levelCommands(), quickEffectCommands(), filterCommands(),
          resampleCommands(), channelCommands(), markerCommands(), envelopeCommands(), silenceCommands(),
          synthesisCommands(), rhythmCommands(), sampleCommands(), rackCommands()}) {
      std::move(group.begin(), group.end(), std::back_inserter(all));
    }
    return all;
  }();
  return table;
}

const Command* findCommand(std::string_view id) {
  for (const Command& command : commandTable()) {
    if (id == command.id) return &command;
  }
  return nullptr;
}

std::optional<Refusal> needAudio(CommandCall& call) {
  if (call.doc.wave().frames() == 0) return Refusal{};
  return std::nullopt;
}

Refusal clipboardMismatch(const CWave& clipboard) {
  char text[96];
  std::snprintf(text, sizeof text, "Clipboard channel number:%d\nUnable to paste data", clipboard.channels());
  return {text};
}

Parameter positionalFrame(const char* key, const char* label) {
  return {key, label, "frames", ParameterType::frame, true, FrameOrTime{}, 0, 0, ""};
}

Parameter positionalInteger(const char* key, const char* label, double minimum, double maximum) {
  return {key, label, "", ParameterType::integer, true, int64_t{0}, minimum, maximum, ""};
}

Parameter positionalReal(const char* key, const char* label, const char* unit, double minimum,
                         double maximum) {
  return {key, label, unit, ParameterType::real, true, 0.0, minimum, maximum, ""};
}

}  // namespace plumetta
