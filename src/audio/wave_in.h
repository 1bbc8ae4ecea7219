// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "audio/capture_session.h"
#include "platform/wave_in_device.h"

namespace plumetta {

// Captures from the multimedia input of the system: converts each device buffer into the owner's float buffer
// and hands it to one callback. UI thread.
class CWaveIn {
 public:
  enum State : int32_t {
    kRunning = 0,
    kStopped = 1,
    kLost = 2,  // a buffer could not be queued again, or the device delivers nothing more
  };

  explicit CWaveIn(WaveInSystem& system = nativeWaveIn(), PollTimer& timer = steadyPollTimer());
  ~CWaveIn();
  CWaveIn(const CWaveIn&) = delete;
  CWaveIn& operator=(const CWaveIn&) = delete;

  // While stopped. Every stop forgets them, so that every start wants them anew.
  void SetCallback(WaveInCallback function, void* context);
  // `floatBuffer`, frames × channels floats that must outlive the running state, is always taken. Of the
  // rest, each value that is acceptable: the rates of isWaveInRate, 8, 16 or 24 bits, frames and channels
  // above 0, 2..16 buffers. Takes effect at the next Start.
  void SetParams(int sampleRate, int bitDepth, float* floatBuffer, int frames, int bufferCount, int channels);

  // Stops first. False, with errorText() where the device is the reason, when nothing will come.
  bool Start(int deviceIndex);
  // False when it was stopped already. Ends within about two seconds whatever the device does; the callback
  // is not called once it has returned.
  bool Stop();
  int32_t GetState() const noexcept;

  // Asks the system afresh; when that fails there are none, and errorText() says why.
  int GetDeviceCount();
  // Empty when there is no such device.
  std::string GetDeviceName(int deviceIndex);
  // Only rates that the device itself names for 16-bit stereo; never 192000.
  bool IsRateSupported(int deviceIndex, int rate);
  // What the device's last failure was, for a person to read; empty when nothing has failed since Start.
  std::string errorText() const;

 private:
  bool startThread();
  bool fail(int error);
  void closeAbandoned();

  WaveInSystem& system_;
  PollTimer& timer_;
  CaptureSession::Parameters parameters_;
  std::string failure_;
  std::shared_ptr<CaptureSession> session_;
  std::thread thread_;
  // Devices that could not be closed; their buffers stay until they can.
  std::vector<std::shared_ptr<CaptureSession>> abandoned_;
};

// Whether wave-in devices may be asked for this rate; 88200 is not among them, unlike for output.
bool isWaveInRate(int sampleRate);
bool isWaveInBitDepth(int bitDepth);

}  // namespace plumetta
