// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <mutex>

namespace plumetta {

// Guards sample data between playback and document commands: whoever changes the length or the layout of a
// buffer, or reads it for playing, holds it. Held as shortly as can be.
class AudioLock {
 private:
  friend class AudioLockHeld;
  std::mutex mutex_;
};

// Proof that the audio lock is held; functions that may only run under it ask for a reference to one.
class AudioLockHeld {
 public:
  explicit AudioLockHeld(AudioLock& lock) : guard_(lock.mutex_) {}

 private:
  std::lock_guard<std::mutex> guard_;
};

}  // namespace plumetta
