// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "app/setting_groups.h"
#include "audio/midi_remote.h"
#include "core/prompter.h"

namespace plumetta {

// Opens the devices that the settings name and assigns the controllers. What can't be opened is told once.
void startMidi(MidiRemote& remote, const MidiSettings& settings, Prompter& prompter);

// What a person has chosen: which device indexes shall be open, and each command's number.
struct MidiChoice {
  std::array<bool, kMidiSlots> open{};
  RemoteControllers controllers = defaultControllers();
};

// Opens exactly the chosen devices, each in the slot of its index, and tells which one could not be.
void openMidiDevices(MidiRemote& remote, const std::array<bool, kMidiSlots>& open, Prompter& prompter);
// Does that, and takes the whole choice over into the settings.
void applyMidiChoice(MidiRemote& remote, const MidiChoice& choice, MidiSettings& settings,
                     Prompter& prompter);

// The first command whose number can't be assigned, and what to say of it.
struct MidiFault {
  size_t command;
  std::string message;
};
std::optional<MidiFault> checkControllers(const std::array<std::string, kRemoteCommandCount>& numbers);

}  // namespace plumetta
