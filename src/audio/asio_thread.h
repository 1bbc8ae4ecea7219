// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "platform/asio_system.h"

namespace plumetta {

// The one thread on which a driver is made, called and released. Whoever calls waits, but not for ever: a
// thread whose driver keeps it is given up and left behind. UI thread.
class AsioThread {
 public:
  // `lastActs` run on the thread before it ends, one after the other, whatever each of them does; on a thread
  // that was given up, as soon as the driver lets go of it. `system` must outlive it even then. Throws
  // std::system_error when there is no thread to be had.
  AsioThread(AsioSystem& system, std::vector<std::function<void()>> lastActs);
  // Gives the thread up if end() hasn't been called.
  ~AsioThread();
  AsioThread(const AsioThread&) = delete;
  AsioThread& operator=(const AsioThread&) = delete;

  // Runs `work` on the thread; what it needs must stay until it is over, and so be held by itself. What it
  // answers; false as well when it threw, or when `goOn`, asked now and then, said no before it was over:
  // then the thread is given up and does no other work.
  bool call(std::function<bool()> work, const std::function<bool()>& goOn);
  bool givenUp() const { return givenUp_; }

  // False when `goOn`, asked now and then, said no before the thread had ended; it is given up.
  bool end(const std::function<bool()>& goOn);

 private:
  struct Shared;

  static void serve(AsioSystem& system, const std::shared_ptr<Shared>& shared);
  bool waitFor(const bool& happened, const std::function<bool()>& goOn);
  void giveUp();

  std::shared_ptr<Shared> shared_;
  std::thread thread_;
  bool givenUp_ = false;
};

}  // namespace plumetta
