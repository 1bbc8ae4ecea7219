// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/asio_thread.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace plumetta {
namespace {

// Between two looks at the messages of the driver's windows, and at whether a call shall go on.
constexpr std::chrono::milliseconds kTurn{10};

}  // namespace

// Held by both sides: the thread may outlast the one that has given it up.
struct AsioThread::Shared {
  std::mutex mutex;
  std::condition_variable changed;
  std::function<bool()> work;  // posted and not yet begun
  bool done = false;
  bool answer = false;
  bool quit = false;
  bool ended = false;
  std::vector<std::function<void()>> lastActs;

  // Without the mutex, through which the result goes back.
  void finish(bool result) {
    const std::lock_guard held(mutex);
    answer = result;
    done = true;
    changed.notify_all();
  }
};

AsioThread::AsioThread(AsioSystem& system, std::vector<std::function<void()>> lastActs)
    : shared_(std::make_shared<Shared>()) {
  shared_->lastActs = std::move(lastActs);
  thread_ = std::thread([&system, shared = shared_] { serve(system, shared); });
}

AsioThread::~AsioThread() { giveUp(); }

void AsioThread::serve(AsioSystem& system, const std::shared_ptr<Shared>& shared) {
  const auto ignore = [](bool) {};
  system.enterThread();
  std::unique_lock lock(shared->mutex);
  while (!shared->quit) {
    const auto work = std::exchange(shared->work, nullptr);
    lock.unlock();
    if (work) {
      bool answer = false;
      system.run([&] { answer = work(); }, [&](bool completed) { shared->finish(completed && answer); });
    }
    system.run([&] { system.dispatchMessages(); }, ignore);
    lock.lock();
    shared->changed.wait_for(lock, kTurn, [&] { return shared->work || shared->quit; });
  }
  lock.unlock();
  for (const auto& act : shared->lastActs) system.run(act, ignore);
  shared->lastActs.clear();
  system.leaveThread();
  lock.lock();
  shared->ended = true;
  shared->changed.notify_all();
}

bool AsioThread::call(std::function<bool()> work, const std::function<bool()>& goOn) {
  if (givenUp_) return false;
  {
    const std::lock_guard held(shared_->mutex);
    shared_->work = std::move(work);
    shared_->done = false;
    shared_->changed.notify_all();
  }
  return waitFor(shared_->done, goOn) && shared_->answer;
}

bool AsioThread::end(const std::function<bool()>& goOn) {
  if (givenUp_) return false;
  {
    const std::lock_guard held(shared_->mutex);
    shared_->quit = true;
    shared_->changed.notify_all();
  }
  if (!waitFor(shared_->ended, goOn)) return false;
  thread_.join();
  return true;
}

// Until `happened`, one of the shared flags, is set. False when the thread was given up before.
bool AsioThread::waitFor(const bool& happened, const std::function<bool()>& goOn) {
  std::unique_lock lock(shared_->mutex);
  while (!shared_->changed.wait_for(lock, kTurn, [&] { return happened; })) {
    lock.unlock();
    if (!goOn()) {
      giveUp();
      return false;
    }
    lock.lock();
  }
  return true;
}

void AsioThread::giveUp() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard held(shared_->mutex);
    shared_->quit = true;
    shared_->changed.notify_all();
  }
  thread_.detach();
  givenUp_ = true;
}

}  // namespace plumetta
