// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string>

namespace plumetta {

// Fills one buffer of every output channel. `channels` are the driver's 16 pointers, which the callback
// points at *channelCount buffers of *frames floats each, nominally ±1.0. The result is ignored. Audio
// thread; never allocates, never waits but for the audio lock.
using AudioCallback = bool (*)(void* context, float** channels, int* frames, int* channelCount) noexcept;

// What one call of it is asked for at most.
constexpr int kMaxOutputChannels = 16;
constexpr int kMaxOutputFrames = 4096;

// What every sound leaves through: it owns a device, the device's buffers and the thread that fills them. As
// it stands it has no device at all; drivers derive from it. UI thread.
class CAudioDriver {
 public:
  CAudioDriver() = default;
  virtual ~CAudioDriver() = default;
  CAudioDriver(const CAudioDriver&) = delete;
  CAudioDriver& operator=(const CAudioDriver&) = delete;

  // Holds its place among the operations; no driver answers anything else.
  virtual bool Reserved1() { return false; }
  // Stores each value that the driver accepts and keeps the previous one in place of any other. True unless
  // there is no driver. Takes effect at the next Start.
  virtual bool SetParams(int sampleRate, int bufferFrames, int bufferCount, int pollMs, int deviceIndex,
                         int bitDepth);
  virtual int GetDeviceCount() { return 0; }
  virtual int GetChannelCount() { return 0; }
  // True may leave `name` as it was.
  virtual bool GetChannelName(int channel, std::string& name);
  // Opens the device and starts to pull. False with errorText() when the device can't be had, false without
  // one when the callback or the parameters are missing.
  virtual bool Start() { return true; }
  // Ends within about two seconds whatever the device does, and leaves the driver ready for another Start;
  // false when the device could not be closed. The audio lock may not be held: the callback waits for it.
  virtual bool Stop() { return true; }

  // Playing has ended by itself because the device failed; true until the next Start or Stop.
  virtual bool deviceLost() const noexcept { return false; }
  // What the device's last failure was, for a person to read; empty when nothing has failed since Start.
  virtual std::string errorText() const { return {}; }
  // How often the device ran out of sound since Start.
  virtual int underruns() const noexcept { return 0; }

  // Hz at which the callback is really played, which need not be what was asked for. Once started.
  virtual int playedRate() const { return sampleRate_; }
  // Frames from the callback to what is heard. Once started.
  virtual int latencyFrames() const { return 0; }

  // Only while the driver is stopped.
  void SetCallback(AudioCallback function, void* context);
  // Entry 0 for an index out of range.
  const char* GetName(int index) const;

 protected:
  static constexpr int kNames = 32;
  static constexpr int kNameBytes = 64;

  // Cut to fit, between two characters of the UTF-8 text.
  void setName(int index, const std::string& name);

  int sampleRate_ = 44100;
  int bitDepth_ = 16;
  bool callbackSet_ = false;
  bool parametersSet_ = false;
  bool running_ = false;
  int deviceIndex_ = 0;
  std::array<std::array<char, kNameBytes>, kNames> names_{};
  void* context_ = nullptr;
  AudioCallback callback_ = nullptr;
};

}  // namespace plumetta
