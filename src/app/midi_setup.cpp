// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/midi_setup.h"

#include <charconv>

namespace plumetta {

void startMidi(MidiRemote& remote, const MidiSettings& settings, Prompter& prompter) {
  remote.setControllers(settings.controllers);
  bool allOpen = true;
  for (size_t slot = 0; slot < settings.devices.size(); ++slot) {
    if (settings.devices[slot] >= 0) allOpen = remote.open(slot, settings.devices[slot]) && allOpen;
  }
  if (!allOpen) prompter.message("Unable to start midi in driver");
}

void openMidiDevices(MidiRemote& remote, const std::array<bool, kMidiSlots>& open, Prompter& prompter) {
  const std::vector<std::string> names = remote.deviceNames();
  // All are closed first: a slot may hold the device that another one is about to open.
  remote.closeAll();
  for (size_t slot = 0; slot < open.size(); ++slot) {
    if (!open[slot] || remote.open(slot, static_cast<int>(slot))) continue;
    const std::string name = slot < names.size() ? names[slot] : "";
    prompter.message("Unable to start midi " + std::to_string(slot) + ": " + name);
  }
}

void applyMidiChoice(MidiRemote& remote, const MidiChoice& choice, MidiSettings& settings,
                     Prompter& prompter) {
  openMidiDevices(remote, choice.open, prompter);
  remote.setControllers(choice.controllers);
  for (size_t slot = 0; slot < settings.devices.size(); ++slot) {
    settings.devices[slot] = choice.open[slot] ? static_cast<int>(slot) : -1;
  }
  settings.controllers = choice.controllers;
}

std::optional<MidiFault> checkControllers(const std::array<std::string, kRemoteCommandCount>& numbers) {
  for (size_t i = 0; i < numbers.size(); ++i) {
    int number = -1;
    const char* const end = numbers[i].data() + numbers[i].size();
    const auto [stop, error] = std::from_chars(numbers[i].data(), end, number);
    if (error == std::errc{} && stop == end && number >= 0 && number <= kLastController) continue;
    return MidiFault{
        i, std::string("Midi command : ") + kRemoteCommands[i].name + ", must be between 0 and 255"};
  }
  return std::nullopt;
}

}  // namespace plumetta
