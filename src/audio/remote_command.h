// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>

namespace plumetta {

// What a MIDI controller can be assigned to, in the order of the command table.
enum class RemoteCommand {
  play,
  stop,
  pause,
  record,
  rewind,
  forward,
  backToStart,
  nextMarker,
  previousMarker,
  addMarker,
  volume,
  pan,
  toggleWindow,
};
inline constexpr size_t kRemoteCommandCount = 13;
inline constexpr int kLastController = 255;  // the highest number that can be assigned

struct RemoteCommandRow {
  const char* name;       // settings key
  int defaultController;  // controller number, 0 to 255; those above 127 are never received
};

inline constexpr std::array<RemoteCommandRow, kRemoteCommandCount> kRemoteCommands{{
    {"MidiCommandPlay", 10},
    {"MidiCommandStop", 11},
    {"MidiCommandPause", 12},
    {"MidiCommandRecord", 13},
    {"MidiCommandRewind", 20},
    {"MidiCommandForward", 21},
    {"MidiCommandBackToStart", 22},
    {"MidiCommandNextMarker", 30},
    {"MidiCommandPreviousMarker", 31},
    {"MidiCommandAddMarker", 32},
    {"MidiCommandVolume", 40},
    {"MidiCommandPan", 41},
    {"MidiCommandToggleWindow", 50},
}};

// The controller number of each command.
using RemoteControllers = std::array<int, kRemoteCommandCount>;

constexpr RemoteControllers defaultControllers() {
  RemoteControllers numbers{};
  for (size_t i = 0; i < numbers.size(); ++i) numbers[i] = kRemoteCommands[i].defaultController;
  return numbers;
}

}  // namespace plumetta
