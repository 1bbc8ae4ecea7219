// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli devices`: the devices that sound and control go through, numbered as options name them.
#include "audio/asio_driver_list.h"
#include "audio/input_capture.h"
#include "cli/call.h"
#include "cli/json.h"
#include "platform/midi_in_device.h"
#include "platform/wave_out_device.h"

namespace plumetta {
namespace {

struct DeviceList {
  std::vector<std::string> names;
  std::string error;  // why there are none
};

struct Section {
  const char* title;
  const char* key;
  DeviceList (*list)();
};

DeviceList waveOutDevices() {
  WaveOutSystem& system = nativeWaveOut();
  int count = 0;
  if (const int error = system.countDevices(count)) return {{}, system.errorText(error)};
  DeviceList devices;
  for (int i = 0; i < count; ++i) {
    std::string name;
    if (const int error = system.deviceName(i, name)) name = system.errorText(error);
    devices.names.push_back(name);
  }
  return devices;
}

DeviceList waveInDevices() {
  DeviceList devices;
  devices.names = waveInDeviceNames(nativeWaveIn(), devices.error);
  return devices;
}

DeviceList midiInDevices() { return {nativeMidiInSystem().deviceNames(), {}}; }

DeviceList asioDrivers() {
  DeviceList devices;
  for (const AsioDriverEntry& driver : listAsioDrivers(nativeAsio())) devices.names.push_back(driver.name);
  return devices;
}

constexpr Section kSections[] = {
    {"Wave-out devices", "wave_out", waveOutDevices},
    {"Wave-in devices", "wave_in", waveInDevices},
    {"MIDI-in devices", "midi_in", midiInDevices},
    {"ASIO devices", "asio", asioDrivers},
};

std::string asText() {
  std::string text;
  for (const Section& section : kSections) {
    const DeviceList devices = section.list();
    text += std::string(section.title) + ":\n";
    for (size_t i = 0; i < devices.names.size(); ++i) {
      text += "  " + std::to_string(i) + "  " + devices.names[i] + "\n";
    }
    if (devices.names.empty()) text += "  none" + (devices.error.empty() ? "" : ": " + devices.error) + "\n";
  }
  return text;
}

std::string asJson() {
  JsonWriter json;
  json.beginObject();
  for (const Section& section : kSections) {
    json.key(section.key).beginArray();
    const DeviceList devices = section.list();
    for (size_t i = 0; i < devices.names.size(); ++i) {
      json.beginObject()
          .key("index")
          .value(static_cast<int>(i))
          .key("name")
          .value(devices.names[i])
          .endObject();
    }
    json.endArray();
  }
  return json.endObject().text() + "\n";
}

}  // namespace

int runDevices(const CallOptions&, WordReader words) {
  bool json = false;
  while (!words.atEnd()) {
    const std::string word = words.take();
    if (word != "--json") return wrongCall("devices: what is '" + word + "'?");
    json = true;
  }
  return print(json ? asJson() : asText()) ? kAllDone : kFileError;
}

}  // namespace plumetta
