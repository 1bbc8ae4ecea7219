// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace plumetta {

// Playing through the multimedia output of the system. Operations answer with an error code of the platform,
// 0 for success; WaveOutSystem::errorText tells what it means. No call waits longer than a second and a half
// for a sound server, whatever that does.

// Interleaved PCM: 8 bits are unsigned, 16 and 24 are signed and little-endian, 3 bytes for 24.
struct WaveOutFormat {
  int channels = 2;
  int sampleRate = 44100;
  int bitsPerSample = 16;
  // The buffers that will be kept with the device: how far ahead it is given sound.
  int bufferFrames = 2048;
  int bufferCount = 4;
};

// The platform's own record of one buffer. Must stay where it is, with its bytes, while the device has it.
class WaveOutHeader {
 public:
  virtual ~WaveOutHeader() = default;
  // The device has played the bytes or given them back, or never had them. Any thread.
  virtual bool done() const noexcept = 0;
  virtual void setDone() noexcept = 0;
  // Neither done nor prepared, no loops, and these bytes.
  virtual void assign(const void* data, uint32_t bytes) noexcept = 0;
};

// An open device. Destroying it closes it; headers that it may still have must outlive it.
class WaveOutDevice {
 public:
  virtual ~WaveOutDevice() = default;
  virtual int prepare(WaveOutHeader& header) noexcept = 0;
  virtual int unprepare(WaveOutHeader& header) noexcept = 0;
  // Queues a prepared header behind those already written; doesn't wait for it to be played.
  virtual int write(WaveOutHeader& header) noexcept = 0;
  // Stops at once; everything queued becomes done.
  virtual int reset() noexcept = 0;
  virtual int close() noexcept = 0;
};

class WaveOutSystem {
 public:
  virtual ~WaveOutSystem() = default;
  // Asked afresh each time. 0 devices wherever it answers with an error.
  virtual int countDevices(int& count) = 0;
  virtual int deviceName(int index, std::string& name) = 0;
  virtual int open(int index, const WaveOutFormat& format, std::unique_ptr<WaveOutDevice>& device) = 0;
  // A header of the kind that this system's devices take.
  virtual std::unique_ptr<WaveOutHeader> newHeader() = 0;
  virtual std::string errorText(int error) = 0;
};

WaveOutSystem& nativeWaveOut();

}  // namespace plumetta
