// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace plumetta {

// When the process crashes within somebody else's code, a note in a file says whose it was. Nothing else is
// done about the crash: it takes its usual course.

// From now on notes go to "plumetta.crash" in `folder`. The last call counts; UI thread.
void keepCrashNotes(const std::string& folder);
// The names that notes in `folder` hold, one a line, and removes them. Empty when there are none.
std::string takeCrashNotes(const std::string& folder);

// While one lives, a crash of this thread is put down to `name`, which must live as long. Nests. Any thread;
// neither allocates nor waits.
class CrashBlame {
 public:
  explicit CrashBlame(const char* name) noexcept : before_(exchange(name)) {}
  ~CrashBlame() { exchange(before_); }
  CrashBlame(const CrashBlame&) = delete;
  CrashBlame& operator=(const CrashBlame&) = delete;

 private:
  static const char* exchange(const char* name) noexcept;

  const char* before_;
};

}  // namespace plumetta
