// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace plumetta {

// A short message's status byte and its two data bytes; 0 for one that the message has not got. Called on the
// device's own thread, which must not be held up.
using MidiHandler = std::function<void(uint8_t status, uint8_t data1, uint8_t data2)>;

// An open MIDI input device. Destroying it stops and closes it; its handler is not called afterwards. One
// that vanishes falls silent.
class MidiInDevice {
 public:
  virtual ~MidiInDevice() = default;
};

// The MIDI inputs of a machine. UI thread.
class MidiInSystem {
 public:
  virtual ~MidiInSystem() = default;

  // Product names by device index, asked afresh.
  virtual std::vector<std::string> deviceNames() = 0;
  // Opens a device and starts it. Null when there is none of that index or it can't be opened.
  virtual std::unique_ptr<MidiInDevice> open(int device, MidiHandler handler) = 0;
};

MidiInSystem& nativeMidiInSystem();

}  // namespace plumetta
