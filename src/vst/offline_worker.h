// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace plumetta {

// A thread that does one piece of work after another, and can be left behind in one that never ends.
class OfflineWorker {
 public:
  // Runs on the worker's thread. What it touches must live as long as the work runs, also when nobody waits
  // any more.
  using Work = std::function<bool()>;

  // Throws std::system_error when there can be no thread.
  OfflineWorker();
  // Ends the thread, or leaves it behind in its work.
  ~OfflineWorker();
  OfflineWorker(const OfflineWorker&) = delete;
  OfflineWorker& operator=(const OfflineWorker&) = delete;

  // Begins a piece of work; the one before has been waited for.
  void begin(Work work);
  // Waits for the work that has begun: what it answers. While it runs, `goOn` is asked several times a
  // second; when that says no, the answer is false and the work is left to itself: nothing more may be begun
  // then.
  bool finish(const std::function<bool()>& goOn);
  bool run(Work work, const std::function<bool()>& goOn) {
    begin(std::move(work));
    return finish(goOn);
  }

 private:
  struct Shared {
    std::mutex mutex;
    std::condition_variable changed;
    Work work;
    bool busy = false, answer = false, end = false;
  };

  static void serve(const std::shared_ptr<Shared>& shared);

  std::shared_ptr<Shared> shared_;
};

}  // namespace plumetta
