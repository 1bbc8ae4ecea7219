// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/midi_remote.h"

#include <algorithm>

namespace plumetta {
namespace {

constexpr int kControlChange = 0xB0;
constexpr int kKindOfMessage = 0xF0;  // the rest of a status byte is the channel

}  // namespace

MidiRemote::MidiRemote(MidiInSystem& system, std::atomic<float>& generalVolume)
    : system_(system), generalVolume_(generalVolume) {
  setControllers(defaultControllers());
}

MidiRemote::~MidiRemote() { closeAll(); }

void MidiRemote::setControllers(const RemoteControllers& controllers) {
  for (size_t i = 0; i < controllers.size(); ++i) controllers_[i] = controllers[i];
}

bool MidiRemote::open(size_t slot, int device) {
  close(slot);
  slots_[slot] = system_.open(
      device, [this](uint8_t status, uint8_t data1, uint8_t data2) { receive(status, data1, data2); });
  return isOpen(slot);
}

void MidiRemote::close(size_t slot) { slots_[slot].reset(); }

void MidiRemote::closeAll() {
  for (size_t slot = 0; slot < slots_.size(); ++slot) close(slot);
}

bool MidiRemote::anyOpen() const {
  return std::ranges::any_of(slots_, [](const auto& device) { return device != nullptr; });
}

void MidiRemote::startLearning() {
  learned_ = -1;
  learning_ = true;
}

std::optional<int> MidiRemote::takeLearned() {
  const int controller = learned_.exchange(-1);
  return controller < 0 ? std::nullopt : std::optional(controller);
}

// The first of two commands with one number wins.
std::optional<RemoteCommand> MidiRemote::commandOf(int controller) const {
  const auto found =
      std::ranges::find_if(controllers_, [=](const auto& number) { return number == controller; });
  if (found == controllers_.end()) return std::nullopt;
  return static_cast<RemoteCommand>(found - controllers_.begin());
}

void MidiRemote::receive(uint8_t status, uint8_t controller, uint8_t value) {
  if ((status & kKindOfMessage) != kControlChange) return;
  if (learning_.exchange(false)) {
    learned_ = controller;
    return;
  }
  const auto command = commandOf(controller);
  if (!command) return;
  if (command == RemoteCommand::volume) generalVolume_ = static_cast<float>(value / 127.0);
  if (command == RemoteCommand::pan) setPan(value);
  if (poster_) poster_(*command, value);
}

// 63 and 64 are both the middle: seven bits have no single one.
void MidiRemote::setPan(int value) {
  const int position = value & 0x7F;
  const bool first = position <= 63;
  firstPanGain_ = first ? static_cast<float>(position / 63.0) : 1.0f;
  secondPanGain_ = first ? 1.0f : static_cast<float>(1 - (position - 64) / 63.0);
}

}  // namespace plumetta
