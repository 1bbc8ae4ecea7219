// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/wave_out_device.h"

#include <windows.h>

#include <mmsystem.h>

#include "platform/windows/wave_records.h"
#include "platform/windows/wide.h"

namespace plumetta {
namespace {

class Header : public WaveOutHeader {
 public:
  bool done() const noexcept override { return isDone(native_); }
  void setDone() noexcept override { native_.dwFlags |= WHDR_DONE; }
  void assign(const void* data, uint32_t bytes) noexcept override {
    native_ = {};
    native_.lpData = const_cast<char*>(static_cast<const char*>(data));
    native_.dwBufferLength = bytes;
  }
  WAVEHDR* native() { return &native_; }

 private:
  WAVEHDR native_{};
};

WAVEHDR* nativeOf(WaveOutHeader& header) { return static_cast<Header&>(header).native(); }

class Device : public WaveOutDevice {
 public:
  explicit Device(HWAVEOUT handle) : handle_(handle) {}
  ~Device() override { close(); }

  int prepare(WaveOutHeader& header) noexcept override {
    return codeOf(waveOutPrepareHeader(handle_, nativeOf(header), sizeof(WAVEHDR)));
  }
  int unprepare(WaveOutHeader& header) noexcept override {
    return codeOf(waveOutUnprepareHeader(handle_, nativeOf(header), sizeof(WAVEHDR)));
  }
  int write(WaveOutHeader& header) noexcept override {
    return codeOf(waveOutWrite(handle_, nativeOf(header), sizeof(WAVEHDR)));
  }
  int reset() noexcept override { return codeOf(waveOutReset(handle_)); }
  int close() noexcept override {
    if (handle_ == nullptr) return 0;
    const int error = codeOf(waveOutClose(handle_));
    if (error == 0) handle_ = nullptr;
    return error;
  }

 private:
  HWAVEOUT handle_;
};

class MultimediaOutput : public WaveOutSystem {
 public:
  int countDevices(int& count) override {
    count = static_cast<int>(waveOutGetNumDevs());
    return 0;
  }

  int deviceName(int index, std::string& name) override {
    WAVEOUTCAPSW capabilities{};
    const int error =
        codeOf(waveOutGetDevCapsW(static_cast<UINT_PTR>(index), &capabilities, sizeof capabilities));
    if (error == 0) name = narrow(capabilities.szPname);
    return error;
  }

  int open(int index, const WaveOutFormat& format, std::unique_ptr<WaveOutDevice>& device) override {
    const WAVEFORMATEX pcm = plainPcm(format.channels, format.sampleRate, format.bitsPerSample);
    HWAVEOUT handle = nullptr;
    const int error = codeOf(waveOutOpen(&handle, static_cast<UINT>(index), &pcm, 0, 0, CALLBACK_NULL));
    if (error == 0) device = std::make_unique<Device>(handle);
    return error;
  }

  std::unique_ptr<WaveOutHeader> newHeader() override { return std::make_unique<Header>(); }

  std::string errorText(int error) override {
    wchar_t text[1024] = L"";
    if (waveOutGetErrorTextW(static_cast<MMRESULT>(error), text, 1024) != MMSYSERR_NOERROR) {
      return "The sound device reports error " + std::to_string(error) + ".";
    }
    return narrow(text);
  }
};

}  // namespace

WaveOutSystem& nativeWaveOut() {
  static MultimediaOutput output;
  return output;
}

}  // namespace plumetta
