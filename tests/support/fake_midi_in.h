// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <set>

#include "platform/midi_in_device.h"

namespace plumetta {

// MIDI inputs without a machine: a test names them, plays on those that are open and makes others refuse.
class FakeMidiIn : public MidiInSystem {
 public:
  std::vector<std::string> names{"First", "Second", "Third"};
  std::set<int> refusing;

  std::vector<std::string> deviceNames() override { return names; }
  std::unique_ptr<MidiInDevice> open(int device, MidiHandler handler) override {
    // As with real ones, a device can be open only once.
    if (device < 0 || device >= static_cast<int>(names.size()) || refusing.contains(device) ||
        isOpen(device)) {
      return nullptr;
    }
    handlers_[device] = std::move(handler);
    return std::make_unique<Device>(*this, device);
  }

  bool isOpen(int device) const { return handlers_.contains(device); }
  // What the device's thread would do; nothing while it is closed.
  void play(int device, int status, int data1, int data2) {
    if (!isOpen(device)) return;
    handlers_[device](static_cast<uint8_t>(status), static_cast<uint8_t>(data1), static_cast<uint8_t>(data2));
  }

 private:
  struct Device : MidiInDevice {
    Device(FakeMidiIn& o, int d) : owner(o), device(d) {}
    ~Device() override { owner.handlers_.erase(device); }
    FakeMidiIn& owner;
    int device;
  };

  std::map<int, MidiHandler> handlers_;
};

}  // namespace plumetta
