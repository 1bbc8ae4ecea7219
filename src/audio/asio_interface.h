// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "audio/asio_session.h"
#include "audio/asio_thread.h"
#include "audio/audio_driver.h"
#include "audio/pull_session.h"

namespace plumetta {

// Plays through an ASIO driver, which says how many outputs there are and how long their buffers, and pulls
// on a thread of its own. Every call of a driver goes by a thread that is given up when it doesn't come back.
class CASIOInterface : public CAudioDriver {
 public:
  // Lists the drivers that there are by now.
  explicit CASIOInterface(AsioSystem& system = nativeAsio(), PollTimer& timer = steadyPollTimer());
  ~CASIOInterface() override;

  // Accepts 22050, 44100, 48000, 88200 and 96000 Hz, drivers from 0 up, and 8, 16 or 24 bits. Buffers are the
  // driver's own choice.
  bool SetParams(int sampleRate, int bufferFrames, int bufferCount, int pollMs, int deviceIndex,
                 int bitDepth) override;
  int GetDeviceCount() override { return static_cast<int>(drivers_.size()); }
  // The outputs of the selected driver, and the name of one. Unless it plays it is loaded for the question;
  // 0 and false when it can't be asked.
  int GetChannelCount() override;
  bool GetChannelName(int channel, std::string& name) override;
  // False when the driver can't be loaded. A loaded driver that fails in a later step counts as running
  // until it is stopped, and says so in nothing but errorText().
  bool Start() override;
  bool Stop() override;
  // The driver has stopped asking for sound.
  bool deviceLost() const noexcept override;
  std::string errorText() const override;
  int playedRate() const override;
  int latencyFrames() const override;

  std::vector<std::string> driverNames() const;
  // Each stops what plays; `driverIndex` is asked instead of the selected driver. The panel may be open for
  // as long as `goOn`, asked now and then, says yes.
  bool OpenControlPanel(int driverIndex, const std::function<bool()>& goOn);
  // What the driver tells of itself, for a text file. errorText() is empty when it told everything.
  std::string testReport(int driverIndex);

 private:
  using Step = bool (AsioSession::*)();
  struct NamedStep {
    Step step;
    const char* failure;
  };
  // Looked at several times a second by deviceLost().
  struct StallWatch {
    int64_t switches = 0;
    std::chrono::milliseconds looked{0}, stalled{0};
  };

  static const NamedStep kSteps[];

  bool load(int driverIndex);
  bool run(Step step);
  bool runSteps(int count);
  bool unload();
  std::function<bool()> patience() const;
  bool ready() const { return session_ != nullptr && started_; }
  bool fail(const std::string& text);

  AsioSystem& system_;
  PollTimer& timer_;
  const std::vector<AsioDriverEntry> drivers_;
  std::shared_ptr<AsioSession> session_;  // with thread_, while a driver is loaded
  std::unique_ptr<AsioThread> thread_;
  AsioDriverInfo info_;  // of the loaded driver, after its last step
  bool started_ = false;
  std::string failure_;
  mutable StallWatch watch_;
};

}  // namespace plumetta
