// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/offline_worker.h"

#include <chrono>
#include <thread>

namespace plumetta {

OfflineWorker::OfflineWorker() : shared_(std::make_shared<Shared>()) {
  // Detached: it owns its share of what it needs, and may be in a plug-in for ever.
  std::thread([shared = shared_] { serve(shared); }).detach();
}

OfflineWorker::~OfflineWorker() {
  const std::lock_guard held(shared_->mutex);
  shared_->end = true;
  shared_->changed.notify_all();
}

void OfflineWorker::serve(const std::shared_ptr<Shared>& shared) {
  std::unique_lock held(shared->mutex);
  for (;;) {
    shared->changed.wait(held, [&] { return shared->busy || shared->end; });
    if (shared->end) return;
    held.unlock();
    const bool answer = shared->work();
    held.lock();
    shared->answer = answer;
    shared->busy = false;
    shared->changed.notify_all();
  }
}

void OfflineWorker::begin(Work work) {
  const std::lock_guard held(shared_->mutex);
  shared_->work = std::move(work);
  shared_->busy = true;
  shared_->changed.notify_all();
}

bool OfflineWorker::finish(const std::function<bool()>& goOn) {
  constexpr std::chrono::milliseconds kLook{100};
  std::unique_lock held(shared_->mutex);
  while (!shared_->changed.wait_for(held, kLook, [&] { return !shared_->busy; })) {
    held.unlock();
    const bool patient = goOn();
    held.lock();
    if (!patient && shared_->busy) return false;
  }
  return shared_->answer;
}

}  // namespace plumetta
