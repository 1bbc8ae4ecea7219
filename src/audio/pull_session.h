// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <vector>

#include "audio/audio_driver.h"
#include "audio/driver_event.h"
#include "platform/wave_out_device.h"

namespace plumetta {

// The time that polling goes by; tests put their own in its place. Any thread.
class PollTimer {
 public:
  virtual ~PollTimer() = default;
  virtual std::chrono::milliseconds now() noexcept = 0;
  virtual void sleep(std::chrono::milliseconds time) noexcept = 0;
};

PollTimer& steadyPollTimer();

// What a platform's error codes can't say: the device holds its buffers, but plays none of them.
constexpr int kDeviceStalled = -1;

// One opened device with its ring of buffers, from open() to close(). The pull thread and the driver hold it
// together, so that a thread that hangs in a call of the system never finds its buffers gone.
class PullSession {
 public:
  struct Parameters {
    AudioCallback callback = nullptr;
    void* context = nullptr;
    int deviceIndex = 0;
    WaveOutFormat format;
    std::chrono::milliseconds poll{10};
  };

  PullSession(WaveOutSystem& system, PollTimer& timer, const Parameters& parameters);
  // Closes a device that nobody has closed: the thread was left behind, and goes last.
  ~PullSession();
  PullSession(const PullSession&) = delete;
  PullSession& operator=(const PullSession&) = delete;

  // 0 or the platform's error, as do close() and error().
  int open();

  // The pull thread's work: fills what the device has finished, sleeps, until requestStop() or a failure.
  void run() noexcept;
  void requestStop() noexcept { stop_ = true; }
  // False when the thread has not ended by then.
  bool waitForEnd(std::chrono::milliseconds limit) { return ended_.waitFor(limit); }

  // Once the thread has ended: takes the buffers back and closes the device. May be tried again as long as
  // the device is not closed(); the session must stay that long, since the device may still reach its
  // buffers.
  int close();
  bool closed() const { return closed_; }

  // Why the thread has ended by itself; 0 when it has not. Any thread.
  int error() const noexcept { return error_; }
  // How often the device had played every buffer before the next was ready. Any thread.
  int underruns() const noexcept { return underruns_; }

 private:
  struct Slot {
    std::unique_ptr<WaveOutHeader> header;
    std::vector<uint8_t> memory;
    bool prepared = false;
  };

  int fillPass() noexcept;
  bool refill(Slot& slot) noexcept;
  void watch(int filled) noexcept;
  void fail(int error) noexcept;
  bool allDone(const Slot* but = nullptr) const noexcept;
  void unprepare(Slot& slot) noexcept;

  WaveOutSystem& system_;
  PollTimer& timer_;
  const Parameters parameters_;
  const uint32_t bufferBytes_;
  std::vector<Slot> slots_;
  std::unique_ptr<WaveOutDevice> device_;  // ends before the slots do
  std::array<float*, kMaxOutputChannels> channels_{};
  size_t next_ = 0;
  int64_t written_ = 0;  // buffers in all
  std::chrono::milliseconds lastPass_{0};
  std::chrono::milliseconds stalled_{0};  // since the device last finished a buffer
  std::atomic<bool> stop_{false};
  std::atomic<int> error_{0};
  std::atomic<int> underruns_{0};
  bool closed_ = false;
  CAudioDriverEvent ended_;
};

}  // namespace plumetta
