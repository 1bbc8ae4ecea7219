// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "audio/remote_command.h"
#include "platform/midi_in_device.h"

namespace plumetta {

inline constexpr size_t kMidiSlots = 16;
// The device index that each slot opens; -1 for none.
using MidiDevices = std::array<int, kMidiSlots>;

// MIDI input devices that drive the editor with control-change messages, on any channel. UI thread, but for
// what the devices' threads call.
class MidiRemote {
 public:
  // Called on a device's thread for every command, after Volume and Pan have taken effect; `value` is what
  // came with it, 0 to 127.
  using Poster = std::function<void(RemoteCommand command, int value)>;

  // `generalVolume` is written by Volume and must outlive this.
  MidiRemote(MidiInSystem& system, std::atomic<float>& generalVolume);
  ~MidiRemote();
  MidiRemote(const MidiRemote&) = delete;
  MidiRemote& operator=(const MidiRemote&) = delete;

  // While every slot is closed.
  void setPoster(Poster poster) { poster_ = std::move(poster); }
  void setControllers(const RemoteControllers& controllers);

  std::vector<std::string> deviceNames() const { return system_.deviceNames(); }
  // Closes the slot and opens a device in it. False when that fails; the slot is closed then.
  bool open(size_t slot, int device);
  void close(size_t slot);
  void closeAll();
  bool isOpen(size_t slot) const { return slots_[slot] != nullptr; }
  bool anyOpen() const;

  // From here on the next controller that is moved is kept for `takeLearned` and drives nothing.
  void startLearning();
  void stopLearning() { learning_ = false; }
  // The number of the controller that was moved; nothing as long as none was.
  std::optional<int> takeLearned();

  // What Pan has set, 1.0 each without it. Any thread.
  float firstPanGain() const { return firstPanGain_; }
  float secondPanGain() const { return secondPanGain_; }

 private:
  // A device's thread: allocates nothing and waits for nothing, but for what the poster does.
  void receive(uint8_t status, uint8_t controller, uint8_t value);
  std::optional<RemoteCommand> commandOf(int controller) const;
  void setPan(int value);

  MidiInSystem& system_;
  std::atomic<float>& generalVolume_;
  Poster poster_;
  std::array<std::atomic<int>, kRemoteCommandCount> controllers_;
  std::atomic<float> firstPanGain_{1.0f};
  std::atomic<float> secondPanGain_{1.0f};
  std::atomic<bool> learning_{false};
  std::atomic<int> learned_{-1};
  std::array<std::unique_ptr<MidiInDevice>, kMidiSlots> slots_;  // null while closed
};

}  // namespace plumetta
