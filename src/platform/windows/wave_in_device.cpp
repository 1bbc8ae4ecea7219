// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/wave_in_device.h"

#include <windows.h>

#include <mmsystem.h>
// Behind mmsystem.h, whose formats it extends.
#include <mmreg.h>

#include "platform/windows/wave_records.h"
#include "platform/windows/wide.h"

namespace plumetta {
namespace {

// The PCM sub-format of an extensible format: 00000001-0000-0010-8000-00AA00389B71.
constexpr GUID kPcmSubFormat{1, 0, 0x10, {0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71}};
constexpr WORD kExtraBytes = 22;
constexpr DWORD kFrontLeftAndRight = 3;

class Header : public WaveInHeader {
 public:
  Header() { native_.dwUser = reinterpret_cast<DWORD_PTR>(this); }
  bool done() const noexcept override { return isDone(native_); }
  void assign(void* data, uint32_t bytes) noexcept override {
    native_.lpData = static_cast<char*>(data);
    native_.dwBufferLength = bytes;
    native_.dwBytesRecorded = 0;
    native_.dwFlags = 0;
    native_.dwLoops = 0;
  }
  WAVEHDR* native() { return &native_; }

 private:
  WAVEHDR native_{};
};

WAVEHDR* nativeOf(WaveInHeader& header) { return static_cast<Header&>(header).native(); }

class Device : public WaveInDevice {
 public:
  Device(WaveInHandler handler, void* context) : handler_(handler), context_(context) {}
  ~Device() override { close(); }

  int open(int index, const WAVEFORMATEX& format) {
    return codeOf(waveInOpen(&handle_, static_cast<UINT>(index), &format,
                             reinterpret_cast<DWORD_PTR>(onEvent), reinterpret_cast<DWORD_PTR>(this),
                             CALLBACK_FUNCTION));
  }

  int prepare(WaveInHeader& header) noexcept override {
    return codeOf(waveInPrepareHeader(handle_, nativeOf(header), sizeof(WAVEHDR)));
  }
  int unprepare(WaveInHeader& header) noexcept override {
    return codeOf(waveInUnprepareHeader(handle_, nativeOf(header), sizeof(WAVEHDR)));
  }
  int queue(WaveInHeader& header) noexcept override {
    return codeOf(waveInAddBuffer(handle_, nativeOf(header), sizeof(WAVEHDR)));
  }
  int start() noexcept override { return codeOf(waveInStart(handle_)); }
  // A device that is gone refuses the next buffer.
  int failure() const noexcept override { return 0; }
  int reset() noexcept override {
    const int error = codeOf(waveInReset(handle_));
    return error != 0 ? error : codeOf(waveInStop(handle_));
  }
  int close() noexcept override {
    if (handle_ == nullptr) return 0;
    const int error = codeOf(waveInClose(handle_));
    if (error == 0) handle_ = nullptr;
    return error;
  }

 private:
  static void CALLBACK onEvent(HWAVEIN, UINT event, DWORD_PTR device, DWORD_PTR header, DWORD_PTR) {
    if (event != WIM_DATA) return;
    auto* own = reinterpret_cast<Device*>(device);
    own->handler_(own->context_, *reinterpret_cast<Header*>(reinterpret_cast<WAVEHDR*>(header)->dwUser));
  }

  WaveInHandler handler_;
  void* context_;
  HWAVEIN handle_ = nullptr;
};

// Plain PCM, but for 24 bits, which only the extensible format can tell.
WAVEFORMATEXTENSIBLE nativeFormat(const WaveInFormat& format) {
  WAVEFORMATEXTENSIBLE native{};
  WAVEFORMATEX& pcm = native.Format;
  pcm = plainPcm(format.channels, format.sampleRate, format.bitsPerSample);
  if (format.bitsPerSample == 24) {
    pcm.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
    pcm.cbSize = kExtraBytes;
    native.dwChannelMask = kFrontLeftAndRight;
    native.SubFormat = kPcmSubFormat;
  }
  return native;
}

class MultimediaInput : public WaveInSystem {
 public:
  int countDevices(int& count) override {
    count = static_cast<int>(waveInGetNumDevs());
    return 0;
  }

  int capabilities(int index, WaveInCapabilities& capabilities) override {
    WAVEINCAPSW native{};
    const int error = codeOf(waveInGetDevCapsW(static_cast<UINT_PTR>(index), &native, sizeof native));
    if (error == 0) capabilities = {narrow(native.szPname), native.dwFormats};
    return error;
  }

  int open(int index, const WaveInFormat& format, WaveInHandler handler, void* context,
           std::unique_ptr<WaveInDevice>& device) override {
    auto opened = std::make_unique<Device>(handler, context);
    const int error = opened->open(index, nativeFormat(format).Format);
    if (error == 0) device = std::move(opened);
    return error;
  }

  std::unique_ptr<WaveInHeader> newHeader() override { return std::make_unique<Header>(); }

  std::string errorText(int error) override {
    wchar_t text[1024] = L"";
    if (waveInGetErrorTextW(static_cast<MMRESULT>(error), text, 1024) != MMSYSERR_NOERROR) {
      return "The sound device reports error " + std::to_string(error) + ".";
    }
    return narrow(text);
  }
};

}  // namespace

WaveInSystem& nativeWaveIn() {
  static MultimediaInput input;
  return input;
}

}  // namespace plumetta
