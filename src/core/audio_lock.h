// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <mutex>
#include <thread>

namespace plumetta {

// Guards sample data between playback and document commands: whoever changes the length or the layout of a
// buffer, or reads it for playing, holds it. Held as shortly as can be.
class AudioLock {
 private:
  friend class AudioLockHeld;

  void take() {
    ++waiting_;
    mutex_.lock();
    --waiting_;
  }
  void give() { mutex_.unlock(); }

  std::mutex mutex_;
  std::atomic<int> waiting_{0};
};

// Proof that the audio lock is held; functions that may only run under it ask for a reference to one.
class AudioLockHeld {
 public:
  explicit AudioLockHeld(AudioLock& lock) : lock_(lock) { lock_.take(); }
  ~AudioLockHeld() { lock_.give(); }
  AudioLockHeld(const AudioLockHeld&) = delete;
  AudioLockHeld& operator=(const AudioLockHeld&) = delete;

  // Lets go of the lock while `work` runs.
  template <class Work>
  auto outside(Work work) {
    lock_.give();
    struct TakeAgain {
      AudioLock& lock;
      ~TakeAgain() { lock.take(); }
    } const again{lock_};
    return work();
  }

  // Between two short pieces of long work: lets those through who wait for the lock, then goes on holding it.
  void nextTurn() {
    if (lock_.waiting_ == 0) return;
    lock_.give();
    std::this_thread::yield();
    lock_.take();
  }

 private:
  AudioLock& lock_;
};

}  // namespace plumetta
