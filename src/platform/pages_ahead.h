// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstddef>
#include <thread>

namespace plumetta {

// While it lives, another thread has the system put pages under a large, fresh block, which is about to be
// written from its start: clearing them is most of the time that writing would take. What the block holds
// does not change. Where the system has no such call, nothing happens.
class PagesAhead {
 public:
  PagesAhead(void* block, size_t bytes);
  ~PagesAhead();
  PagesAhead(const PagesAhead&) = delete;
  PagesAhead& operator=(const PagesAhead&) = delete;

 private:
  std::atomic<bool> ended_{false};
  std::thread thread_;
};

}  // namespace plumetta
