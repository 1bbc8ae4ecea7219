// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "audio/driver_event.h"
#include "audio/pull_session.h"
#include "platform/wave_in_device.h"

namespace plumetta {

// What the callback is told of the samples in the owner's float buffer.
struct WaveInBlock {
  int32_t frames;
  int32_t bitDepth;
  int32_t channels;
};

// Takes one buffer. Audio thread; never allocates, never waits.
using WaveInCallback = void (*)(void* context, const WaveInBlock* block) noexcept;

// One opened device with its buffers, from open() to close(). The re-queue thread and CWaveIn hold it
// together, so that a thread that hangs in a call of the system never finds its buffers gone.
class CaptureSession {
 public:
  static constexpr int kMostBuffers = 16;

  struct Parameters {
    WaveInCallback callback = nullptr;
    void* context = nullptr;
    float* floatBuffer = nullptr;
    WaveInFormat format{2, 44100, 16, 0};
    int bufferCount = 2;
  };

  CaptureSession(WaveInSystem& system, PollTimer& timer, const Parameters& parameters);
  // Closes a device that nobody has closed: the thread was left behind, and goes last.
  ~CaptureSession();
  CaptureSession(const CaptureSession&) = delete;
  CaptureSession& operator=(const CaptureSession&) = delete;

  // 0 or the platform's error, as do start() and close().
  int open(int deviceIndex);
  // Queues every buffer and starts the device.
  int start();

  // The re-queue thread's work: gives what has been converted back to the device every 10 ms, until
  // requestStop() or a failure.
  void run() noexcept;
  // The callback is not called again once this has returned.
  void silence();
  void requestStop() noexcept { stop_ = true; }
  // False when the thread has not ended by then.
  bool waitForEnd(std::chrono::milliseconds limit) { return ended_.waitFor(limit); }

  // Once the thread has ended, or where none was started. May be tried again as long as the device is not
  // closed(); the session must stay that long, since the device may still reach its buffers.
  int close();
  bool closed() const { return closed_; }

  // Why capture has ended by itself; 0 when it has not. Any thread.
  int error() const noexcept { return error_; }

 private:
  struct Buffer {
    std::unique_ptr<WaveInHeader> header;
    std::vector<uint8_t> memory;
    bool prepared = false;
    // The device's own flag may show before its data has been converted.
    std::atomic<bool> converted{false};
  };

  static void onData(void* session, WaveInHeader& header) noexcept;
  void convert(const Buffer& buffer) noexcept;
  int requeue() noexcept;
  void watch(int requeued) noexcept;
  void fail(int error) noexcept;

  WaveInSystem& system_;
  PollTimer& timer_;
  const Parameters parameters_;
  std::vector<std::unique_ptr<Buffer>> buffers_;
  std::unique_ptr<WaveInDevice> device_;  // ends before the buffers do
  std::mutex callbackMutex_;              // contended by silence() alone
  bool silenced_ = false;
  bool delivers_ = false;
  std::chrono::milliseconds lastPass_{0};
  std::chrono::milliseconds stalled_{0};
  std::atomic<bool> stop_{false};
  std::atomic<int> error_{0};
  bool closed_ = true;
  CAudioDriverEvent ended_;
};

}  // namespace plumetta
