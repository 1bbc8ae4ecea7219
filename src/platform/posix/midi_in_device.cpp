// SPDX-License-Identifier: GPL-3.0-or-later
// MIDI inputs of ALSA's sequencer and of a JACK server, numbered one after the other.
#include "platform/midi_in_device.h"

#include <RtMidi.h>
#include <jack/jack.h>
#include <unistd.h>

namespace plumetta {
namespace {

constexpr const char* kClientName = "Plumetta";

// Which one of the two systems is there, asked before RtMidi does: it and its libraries complain on standard
// error about one that is not.
bool hasSequencer() { return access("/dev/snd/seq", R_OK | W_OK) == 0; }

bool hasJackServer() {
  jack_set_error_function([](const char*) {});
  jack_set_info_function([](const char*) {});
  jack_client_t* client = jack_client_open("Plumetta probe", JackNoStartServer, nullptr);
  if (client == nullptr) return false;
  jack_client_close(client);
  return true;
}

// Errors of an open client show in what it can do; RtMidi would print or throw them.
void ignoreError(RtMidiError::Type, const std::string&, void*) {}

// Null when the system refuses a client.
std::unique_ptr<RtMidiIn> makeClient(RtMidi::Api api) {
  try {
    auto client = std::make_unique<RtMidiIn>(api, kClientName);
    client->setErrorCallback(ignoreError);
    return client;
  } catch (const RtMidiError&) {
    return nullptr;
  }
}

std::vector<RtMidi::Api> presentSystems() {
  std::vector<RtMidi::Api> present;
  if (hasSequencer()) present.push_back(RtMidi::LINUX_ALSA);
  if (hasJackServer()) present.push_back(RtMidi::UNIX_JACK);
  return present;
}

class RtMidiDevice : public MidiInDevice {
 public:
  RtMidiDevice(std::unique_ptr<RtMidiIn> client, unsigned port, MidiHandler handler)
      : handler_(std::move(handler)), client_(std::move(client)) {
    client_->setCallback(&RtMidiDevice::receive, this);
    client_->openPort(port, "Remote control");
  }
  bool isOpen() const { return client_->isPortOpen(); }

 private:
  static void receive(double, std::vector<unsigned char>* message, void* self) {
    // System exclusive messages are no short ones.
    if (message == nullptr || message->empty() || message->size() > 3) return;
    const auto byte = [&](size_t i) { return i < message->size() ? (*message)[i] : uint8_t{0}; };
    static_cast<RtMidiDevice*>(self)->handler_(byte(0), byte(1), byte(2));
  }

  MidiHandler handler_;
  std::unique_ptr<RtMidiIn> client_;  // goes first: its thread calls the handler
};

class PosixMidiInSystem : public MidiInSystem {
 public:
  std::vector<std::string> deviceNames() override {
    std::vector<std::string> names;
    for (const RtMidi::Api api : presentSystems()) {
      const auto client = makeClient(api);
      const unsigned count = client ? client->getPortCount() : 0;
      for (unsigned port = 0; port < count; ++port) names.push_back(client->getPortName(port));
    }
    return names;
  }

  std::unique_ptr<MidiInDevice> open(int device, MidiHandler handler) override {
    if (device < 0) return nullptr;
    auto port = static_cast<unsigned>(device);
    for (const RtMidi::Api api : presentSystems()) {
      auto client = makeClient(api);
      const unsigned count = client ? client->getPortCount() : 0;
      if (port >= count) {
        port -= count;
        continue;
      }
      auto opened = std::make_unique<RtMidiDevice>(std::move(client), port, std::move(handler));
      if (!opened->isOpen()) return nullptr;
      return opened;
    }
    return nullptr;
  }
};

}  // namespace

MidiInSystem& nativeMidiInSystem() {
  static PosixMidiInSystem system;
  return system;
}

}  // namespace plumetta
