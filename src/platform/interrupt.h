// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// While one lives, Ctrl-C and a request to end are only noted, so that work can end in good order; a second
// one ends the process as usual. One at a time.
class InterruptWatch {
 public:
  InterruptWatch();
  ~InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;

  bool interrupted() const;
  // From now on one more is only noted.
  void watchAgain();
};

}  // namespace plumetta
