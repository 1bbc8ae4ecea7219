// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string>
#include <vector>

#include "audio/asio_interface.h"
#include "audio/audio_driver.h"
#include "audio/wave_out.h"

namespace plumetta {

// Owns the output drivers, picks the active one, keeps the output's settings and the float buffers that the
// callback fills. UI thread, but for what says otherwise. Settings take effect at the next Start.
class AudioPlayer {
 public:
  // The frames that a channel buffer holds, and so the longest device buffer.
  static constexpr int kBufferFrames = kMaxOutputFrames;

  // `callback` may be null: such a player never starts.
  AudioPlayer(AudioCallback callback, void* context, WaveOutSystem& system = nativeWaveOut(),
              AsioSystem& asio = nativeAsio());
  ~AudioPlayer() { Stop(); }
  AudioPlayer(const AudioPlayer&) = delete;
  AudioPlayer& operator=(const AudioPlayer&) = delete;

  // Does nothing while the player runs, unless its device has been lost: then it begins anew. False, with
  // errorText(), when nothing will sound.
  bool Start();
  // Like the driver's: within about two seconds, and never under the audio lock.
  bool Stop();
  bool running() const { return running_; }

  // The device failed while it played. Stays so until the next Start or Stop.
  bool deviceLost() const { return running_ && active_->deviceLost(); }
  std::string errorText() const { return active_->errorText(); }
  int underruns() const { return active_->underruns(); }
  // Of the device as it plays; what is set while it doesn't.
  int playedRate() const { return running_ ? active_->playedRate() : sampleRate_; }
  // Seconds from the callback to what is heard.
  double latency() const { return static_cast<double>(active_->latencyFrames()) / playedRate(); }
  // The outputs of the active driver with the present settings.
  int channelCount();

  // 1 makes the ASIO driver active, anything else the wave-out driver. Stops what plays.
  void SelectDriver(int useAsio);
  CAudioDriver& activeDriver() { return *active_; }
  CWaveOut& waveOut() { return waveOut_; }
  CASIOInterface& asio() { return asio_; }
  // That driver's test report, at the sample rate that is set. Stops what plays through ASIO.
  std::string asioReport(int driverIndex);

  void SetOutput(int deviceIndex, int bufferFrames, int sampleRate);
  void GetOutput(int& deviceIndex, int& bufferFrames, int& sampleRate) const;

  // 8 or 16; anything else changes nothing, for 24 bits carry no usable signal.
  void SetBitDepth(int bits);

  // kBufferFrames floats. Audio thread while the player runs.
  float* channelBuffer(int channel) noexcept { return buffers_[static_cast<size_t>(channel)].data(); }
  int sampleRate() const noexcept { return sampleRate_; }

 private:
  void handOver(CAudioDriver& driver);

  CWaveOut waveOut_;
  CASIOInterface asio_;
  CAudioDriver* active_ = &waveOut_;
  bool running_ = false;
  int sampleRate_ = 44100;
  int bufferFrames_ = 2048;
  int bufferCount_ = 4;
  int pollMs_ = 10;
  int deviceIndex_ = 0;
  int bitDepth_ = 16;
  std::array<std::vector<float>, kMaxOutputChannels> buffers_;
  AudioCallback callback_;
  void* context_;
};

}  // namespace plumetta
