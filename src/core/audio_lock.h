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
    ++taken_;
  }
  void give() { mutex_.unlock(); }

  std::mutex mutex_;
  std::atomic<int> waiting_{0};
  std::atomic<unsigned> taken_{0};  // how often, to see whether somebody else has had it
};

// Proof that the audio lock is held; functions that may only run under it ask for a reference to one.
class AudioLockHeld {
 public:
  explicit AudioLockHeld(AudioLock& lock) : lock_(lock) { lock_.take(); }
  ~AudioLockHeld() { lock_.give(); }
  AudioLockHeld(const AudioLockHeld&) = delete;
  AudioLockHeld& operator=(const AudioLockHeld&) = delete;

  // Somebody waits for the lock.
  bool wanted() const { return lock_.waiting_ != 0; }

  // Lets go of the lock while `work` runs, and until one of those who wait has had it.
  template <class Work>
  auto outside(Work work) {
    const GivenAway given(lock_);
    return work();
  }

  // Between two short pieces of long work: lets those through who wait for the lock, then goes on holding it.
  void nextTurn() {
    if (wanted()) const GivenAway given(lock_);
  }

 private:
  // A mutex that is given up and taken again at once mostly stays where it is: whoever waits for it takes
  // longer to wake up. So this one comes back only after it has been elsewhere.
  class GivenAway {
   public:
    explicit GivenAway(AudioLock& lock) : lock_(lock), before_(lock.taken_) { lock_.give(); }
    ~GivenAway() {
      while (lock_.waiting_ != 0 && lock_.taken_ == before_) std::this_thread::yield();
      lock_.take();
    }
    GivenAway(const GivenAway&) = delete;
    GivenAway& operator=(const GivenAway&) = delete;

   private:
    AudioLock& lock_;
    const unsigned before_;
  };

  AudioLock& lock_;
};

}  // namespace plumetta
