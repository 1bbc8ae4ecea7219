// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <memory>
#include <system_error>
#include <thread>

#include "audio/driver_event.h"
#include "audio/pull_session.h"
#include "audio/sample_ring.h"
#include "platform/file_system.h"

namespace plumetta {

// Puts the frames of a take into its file from a thread of its own, so that no disk, however slow, holds up
// the capture. What could not be written or held any more ends the take: it has no gaps.
class TakeWriter {
 public:
  // Holds `ringFrames` frames while the disk is busy.
  TakeWriter(std::unique_ptr<File> file, int channels, size_t ringFrames,
             PollTimer& timer = steadyPollTimer());
  ~TakeWriter();
  TakeWriter(const TakeWriter&) = delete;
  TakeWriter& operator=(const TakeWriter&) = delete;

  // False when the system has no thread to give; nothing is written then.
  bool start();

  // Audio thread; never allocates, never waits. False once the take has ended.
  bool write(const float* samples, int frames) noexcept;

  // Any thread.
  int64_t framesWritten() const noexcept { return state_->framesTaken; }
  // The take has ended by itself: the disk has failed or is too slow.
  bool failed() const noexcept { return state_->failed; }

  // Waits for the rest to be written, as long as that goes on: a disk that does nothing for two seconds is
  // left behind. Returns why the take is not all in the file; 0 when it is.
  std::error_code finish();

 private:
  // Shared with the thread, which may outlive the writer when the disk hangs.
  struct State {
    State(std::unique_ptr<File> target, int channelCount, size_t ringFrames)
        : file(std::move(target)),
          channels(channelCount),
          ring(ringFrames * static_cast<size_t>(channelCount)) {}

    void run() noexcept;
    bool drain() noexcept;

    std::unique_ptr<File> file;
    const int channels;
    SampleRing ring;
    std::atomic<int64_t> framesTaken{0};
    std::atomic<uint64_t> floatsOnDisk{0};
    std::atomic<bool> ending{false};
    std::atomic<bool> failed{false};
    std::error_code error;  // the thread's, until it has ended
    CAudioDriverEvent ended;
  };

  PollTimer& timer_;
  std::shared_ptr<State> state_;
  std::thread thread_;
};

}  // namespace plumetta
