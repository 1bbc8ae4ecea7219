// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace plumetta {

// Threads that work on the parts of one task at the same time, one for each core with the calling thread.
// They live as long as the crew. For one calling thread.
class WorkCrew {
 public:
  // Makes `threads` workers in all, the caller among them; 0 means as many as there are cores. Fewer come
  // when the system gives no more.
  explicit WorkCrew(int threads = 0);
  ~WorkCrew();
  WorkCrew(const WorkCrew&) = delete;
  WorkCrew& operator=(const WorkCrew&) = delete;

  int size() const { return static_cast<int>(threads_.size()) + 1; }
  // Calls work(part, worker) once for every part below `parts`, and returns when all are done. `worker` is
  // below size() and no two calls at the same time have the same. `work` must not throw.
  void run(int parts, const std::function<void(int part, int worker)>& work);

 private:
  void serve(int worker);
  void takeParts(int worker, std::unique_lock<std::mutex>& lock);

  std::mutex mutex_;
  std::condition_variable begun_, finished_;
  const std::function<void(int, int)>* work_ = nullptr;
  int parts_ = 0;
  int next_ = 0;
  int busy_ = 0;
  bool ending_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace plumetta
