// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/work_crew.h"

#include <algorithm>
#include <system_error>

namespace plumetta {
namespace {

constexpr int kMostThreads = 16;

}  // namespace

WorkCrew::WorkCrew(int threads) {
  if (threads < 1) threads = static_cast<int>(std::thread::hardware_concurrency());
  threads = std::clamp(threads, 1, kMostThreads);
  try {
    for (int worker = 1; worker < threads; ++worker) {
      threads_.emplace_back([this, worker] { serve(worker); });
    }
  } catch (const std::system_error&) {
    // The caller and those that came do the work.
  }
}

WorkCrew::~WorkCrew() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  begun_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void WorkCrew::run(int parts, const std::function<void(int, int)>& work) {
  std::unique_lock lock(mutex_);
  work_ = &work;
  parts_ = parts;
  next_ = 0;
  if (parts > 1) begun_.notify_all();
  takeParts(0, lock);
  finished_.wait(lock, [this] { return busy_ == 0; });
  work_ = nullptr;
}

void WorkCrew::takeParts(int worker, std::unique_lock<std::mutex>& lock) {
  ++busy_;
  while (next_ < parts_) {
    const int part = next_++;
    const auto& work = *work_;
    lock.unlock();
    work(part, worker);
    lock.lock();
  }
  if (--busy_ == 0) finished_.notify_one();
}

void WorkCrew::serve(int worker) {
  std::unique_lock lock(mutex_);
  while (true) {
    begun_.wait(lock, [this] { return ending_ || (work_ != nullptr && next_ < parts_); });
    if (ending_) return;
    takeParts(worker, lock);
  }
}

}  // namespace plumetta
