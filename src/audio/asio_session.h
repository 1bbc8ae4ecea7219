// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "audio/asio_callbacks.h"
#include "audio/asio_driver_list.h"
#include "audio/audio_driver.h"

namespace plumetta {

// What a driver has told of itself, as far as it was asked.
struct AsioDriverInfo {
  std::string name = "No ASIO Driver";
  std::string errorMessage = "No ASIO Driver Error";
  int32_t version = 0;
  int32_t inputs = 0, outputs = 0;
  int32_t minimumFrames = 0, maximumFrames = 0, preferredFrames = 0, granularity = 0;  // of its buffers
  double sampleRate = 0;                                                               // Hz
  bool takesOutputReady = false;
  int32_t inputLatency = 0, outputLatency = 0;  // frames
  std::vector<AsioChannelInfo> channels;        // those with buffers, the inputs first
};

// One driver from its loading to its release. The thread that calls it and the driver's owner hold it
// together, so that a driver that hangs never finds its records gone. The steps run on that thread, in this
// order; each answers false when it failed.
class AsioSession : private AsioBufferFiller {
 public:
  struct Parameters {
    AudioCallback callback = nullptr;
    void* context = nullptr;
    int sampleRate = 44100;
  };

  AsioSession(AsioSystem& system, const AsioClassId& classId, const Parameters& parameters)
      : system_(system), classId_(classId), parameters_(parameters) {}

  bool load();
  bool init();
  bool readChannelCounts();
  // Counts, buffer sizes, rate, and whether it takes "output ready".
  bool staticInit();
  bool createBuffers();
  // From here on the driver pulls.
  bool start();

  bool showControlPanel();
  bool readChannelName(int outputChannel);
  // What takes back each step that was made. They hold the session.
  static std::vector<std::function<void()>> lastActs(const std::shared_ptr<AsioSession>& session);

  // Once a step is over, until the next one begins. Owner's thread.
  const AsioDriverInfo& info() const { return info_; }
  const std::string& channelName() const { return channelName_; }
  int32_t loadError() const { return loadError_; }

  // No buffer switch reaches the callback any more, but for one that has already begun. Any thread.
  void disconnect() noexcept { callbacks_.disconnect(); }
  // Buffer switches since the start. Any thread.
  int64_t switches() const noexcept { return switches_; }

 private:
  void fillBuffers(int half) noexcept override;
  int fillTurn(int half, int offset) noexcept;
  void writeOutputs(int half, int offset, int frames, int channelCount) noexcept;
  void chooseSampleRate();
  bool readChannels();
  void stop();
  void disposeBuffers();
  void release();

  AsioSystem& system_;
  const AsioClassId classId_;
  const Parameters parameters_;
  AsioDriver* driver_ = nullptr;
  int32_t loadError_ = 0;
  bool started_ = false, buffersMade_ = false;
  AsioDriverInfo info_;
  std::string channelName_;
  std::vector<AsioBufferInfo> buffers_;                // one for each of info_.channels
  std::array<float*, kMaxOutputChannels> channels_{};  // audio thread
  std::atomic<int64_t> switches_{0};
  AsioCallbackSet callbacks_;
};

}  // namespace plumetta
