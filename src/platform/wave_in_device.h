// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace plumetta {

// Capturing from the multimedia input of the system. Operations answer with an error code of the platform, 0
// for success; WaveInSystem::errorText tells what it means. No call waits longer than a second and a half for
// a sound server, whatever that does.

// Interleaved PCM: 8 bits are unsigned, 16 and 24 are signed and little-endian, 3 bytes for 24.
struct WaveInFormat {
  int channels = 2;
  int sampleRate = 44100;
  int bitsPerSample = 16;
  int bufferFrames = 2048;  // of each header that will be queued
};

// The platform's own record of one buffer. Must stay where it is, with its bytes, while the device has it.
class WaveInHeader {
 public:
  virtual ~WaveInHeader() = default;
  // The device has filled the bytes or given them back, or never had them. Any thread.
  virtual bool done() const noexcept = 0;
  // Not done, no loops, and these bytes to fill.
  virtual void assign(void* data, uint32_t bytes) noexcept = 0;
};

// A header has been filled, or has come back part-filled because the device was reset. On a thread of the
// device or on the one that calls it, one call at a time; may not call the device.
using WaveInHandler = void (*)(void* context, WaveInHeader& header) noexcept;

// An open device. Destroying it closes it; headers that it may still have must outlive it.
class WaveInDevice {
 public:
  virtual ~WaveInDevice() = default;
  virtual int prepare(WaveInHeader& header) noexcept = 0;
  virtual int unprepare(WaveInHeader& header) noexcept = 0;
  // Queues a prepared header, which may have been filled before, behind those that wait to be filled.
  virtual int queue(WaveInHeader& header) noexcept = 0;
  virtual int start() noexcept = 0;
  // Why nothing more will come, where the device tells by itself; 0 otherwise. Any thread.
  virtual int failure() const noexcept = 0;
  // Stops at once; every queued header becomes done.
  virtual int reset() noexcept = 0;
  virtual int close() noexcept = 0;
};

// The formats that a device says it takes, of which these are asked about: stereo, 16 bits.
enum WaveInFormatBit : uint32_t {
  kStereo16At11025 = 0x00000008,
  kStereo16At22050 = 0x00000080,
  kStereo16At44100 = 0x00000800,
  kStereo16At48000 = 0x00008000,
  kStereo16At96000 = 0x00080000,
};

struct WaveInCapabilities {
  std::string name;
  uint32_t formats = 0;
};

class WaveInSystem {
 public:
  virtual ~WaveInSystem() = default;
  // Asked afresh each time. 0 devices wherever it answers with an error.
  virtual int countDevices(int& count) = 0;
  virtual int capabilities(int index, WaveInCapabilities& capabilities) = 0;
  virtual int open(int index, const WaveInFormat& format, WaveInHandler handler, void* context,
                   std::unique_ptr<WaveInDevice>& device) = 0;
  // A header of the kind that this system's devices take.
  virtual std::unique_ptr<WaveInHeader> newHeader() = 0;
  virtual std::string errorText(int error) = 0;
};

WaveInSystem& nativeWaveIn();

}  // namespace plumetta
