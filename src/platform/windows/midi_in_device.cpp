// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/midi_in_device.h"

#include <windows.h>

#include <mmsystem.h>

#include "platform/windows/wide.h"

namespace plumetta {
namespace {

class WindowsMidiInDevice : public MidiInDevice {
 public:
  explicit WindowsMidiInDevice(MidiHandler handler) : handler_(std::move(handler)) {}
  ~WindowsMidiInDevice() override {
    if (handle_ == nullptr) return;
    midiInReset(handle_);
    midiInClose(handle_);
  }

  bool start(int device) {
    if (midiInOpen(&handle_, static_cast<UINT>(device), reinterpret_cast<DWORD_PTR>(&receive),
                   reinterpret_cast<DWORD_PTR>(this), CALLBACK_FUNCTION) != MMSYSERR_NOERROR) {
      handle_ = nullptr;
      return false;
    }
    return midiInStart(handle_) == MMSYSERR_NOERROR;
  }

 private:
  // A short message is packed: status in the lowest byte, then the data bytes.
  static void CALLBACK receive(HMIDIIN, UINT kind, DWORD_PTR self, DWORD_PTR message, DWORD_PTR) {
    if (kind != MIM_DATA) return;
    const auto byte = [message](int i) { return static_cast<uint8_t>(message >> (8 * i) & 0xFF); };
    reinterpret_cast<WindowsMidiInDevice*>(self)->handler_(byte(0), byte(1), byte(2));
  }

  MidiHandler handler_;
  HMIDIIN handle_ = nullptr;
};

class WindowsMidiInSystem : public MidiInSystem {
 public:
  std::vector<std::string> deviceNames() override {
    std::vector<std::string> names;
    for (UINT device = 0; device < midiInGetNumDevs(); ++device) {
      MIDIINCAPSW facts{};
      midiInGetDevCapsW(device, &facts, sizeof facts);  // a device that has just gone has an empty name
      names.push_back(narrow(facts.szPname));
    }
    return names;
  }

  std::unique_ptr<MidiInDevice> open(int device, MidiHandler handler) override {
    if (device < 0) return nullptr;
    auto opened = std::make_unique<WindowsMidiInDevice>(std::move(handler));
    if (!opened->start(device)) return nullptr;
    return opened;
  }
};

}  // namespace

MidiInSystem& nativeMidiInSystem() {
  static WindowsMidiInSystem system;
  return system;
}

}  // namespace plumetta
