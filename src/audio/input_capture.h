// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "audio/take_writer.h"
#include "audio/wave_in.h"

namespace plumetta {

constexpr int kInputChannels = 2;
constexpr int kInputBuffers = 4;

// What the input is opened with.
struct InputParameters {
  int deviceIndex = 0;
  int sampleRate = 44100;
  int bitDepth = 16;
  int bufferFrames = 2048;
};

// The input with what listens to it: the peaks, which rise while it runs, and a take, while there is one.
// Shows nothing and decides nothing. UI thread, but for what says otherwise.
class InputCapture {
 public:
  explicit InputCapture(WaveInSystem& system = nativeWaveIn(), PollTimer& timer = steadyPollTimer());

  // False, with errorText(), when the device can't be had.
  bool start(const InputParameters& parameters);
  void stop();
  bool running() const { return device_.GetState() != CWaveIn::kStopped; }
  // The device has failed; nothing more will come until the next start.
  bool lost() const { return device_.GetState() == CWaveIn::kLost; }
  std::string errorText() const { return device_.errorText(); }
  // What it was last started with.
  const InputParameters& parameters() const { return parameters_; }
  CWaveIn& device() { return device_; }

  // From here on, frames go to `file` too, interleaved 32-bit floats. False when there is no thread for it.
  bool beginTake(std::unique_ptr<File> file);
  bool taking() const { return taking_; }
  // Disk or memory could not keep up, or the disk has failed: nothing more is taken.
  bool takeFailed() const { return writer_ != nullptr && writer_->failed(); }
  int64_t framesTaken() const { return framesTaken_; }
  // No further frames; the input goes on. What the disk says, once all frames are on their way to it.
  std::error_code endTake();

  // The largest |x| of a channel since it was last asked; meters let it fall.
  float takePeak(int channel) noexcept;

 private:
  static void onBlock(void* self, const WaveInBlock* block) noexcept;
  void takeBlock(const WaveInBlock& block) noexcept;
  void raisePeaks(const WaveInBlock& block) noexcept;

  PollTimer& timer_;
  InputParameters parameters_;
  std::vector<float> floats_;  // one block; empty while stopped
  std::array<std::atomic<float>, 16> peaks_{};
  std::atomic<bool> taking_{false};
  std::atomic<int64_t> framesTaken_{0};
  std::mutex writerMutex_;  // contended only when a take begins or ends
  std::unique_ptr<TakeWriter> writer_;
  CWaveIn device_;  // stops before what its callback reaches goes
};

// Product names of all input devices, in the order of their indices; empty, with why in `error`, when the
// system can't be asked.
std::vector<std::string> waveInDeviceNames(WaveInSystem& system, std::string& error);

}  // namespace plumetta
