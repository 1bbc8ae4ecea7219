// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <thread>
#include <vector>

#include "audio/audio_driver.h"
#include "audio/pull_session.h"
#include "platform/wave_out_device.h"

namespace plumetta {

// Plays through the multimedia output of the system, two channels. A thread polls the device and refills each
// buffer that it has finished, so that the delay is the buffers' length and at most one poll interval.
class CWaveOut : public CAudioDriver {
 public:
  explicit CWaveOut(WaveOutSystem& system = nativeWaveOut(), PollTimer& timer = steadyPollTimer());
  ~CWaveOut() override;

  // Accepts the rates of wave_out.cpp, 1..32767 frames, 2..8 buffers, polling every 1..199 ms, devices from 0
  // up, and 8, 16 or 24 bits.
  bool SetParams(int sampleRate, int bufferFrames, int bufferCount, int pollMs, int deviceIndex,
                 int bitDepth) override;
  // Asks the system afresh; when that fails there are none, and errorText() says why.
  int GetDeviceCount() override;
  int GetChannelCount() override { return channelCount_; }
  // Always true; a channel that isn't there leaves `name` as it was.
  bool GetChannelName(int channel, std::string& name) override;
  bool Start() override;
  bool Stop() override;
  bool deviceLost() const noexcept override;
  std::string errorText() const override;
  int underruns() const noexcept override;
  int latencyFrames() const override { return bufferCount_ * bufferFrames_; }

  // Empty when there is no such device.
  std::string GetDeviceName(int deviceIndex);

 private:
  bool startThread();
  bool fail(int error);
  void closeAbandoned();

  WaveOutSystem& system_;
  PollTimer& timer_;
  int bufferCount_ = 4;
  int bufferFrames_ = 2048;
  int pollMs_ = 10;
  int channelCount_ = 2;
  std::string failure_;
  std::shared_ptr<PullSession> session_;
  std::thread thread_;
  // Devices that could not be closed; their buffers stay until they can.
  std::vector<std::shared_ptr<PullSession>> abandoned_;
};

// Whether wave-out devices may be asked for this rate.
bool isWaveOutRate(int sampleRate);

}  // namespace plumetta
