// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace plumetta {

// Set by an output thread as its last act, and set from then on: what its driver waits for before it touches
// the device. Any thread.
class CAudioDriverEvent {
 public:
  void set() {
    const std::lock_guard held(mutex_);
    set_ = true;
    changed_.notify_all();
  }
  // False when it has not been set by then.
  bool waitFor(std::chrono::milliseconds limit) {
    std::unique_lock held(mutex_);
    return changed_.wait_for(held, limit, [this] { return set_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool set_ = false;
};

}  // namespace plumetta
