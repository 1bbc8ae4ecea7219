// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace plumetta {

// The path of the running executable.
std::string ownExecutable();

// Another program that runs beside this one, without a window of the system's and with nothing to read; what
// it writes to standard output is read here, its errors go nowhere. One thread at a time, and the one that
// started it has to live as long as it does.
class ChildProcess {
 public:
  ChildProcess();
  // Ends it.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // `executable` is a full path. False when it can't be started. Ends the one before.
  bool start(const std::string& executable, const std::vector<std::string>& arguments);

  enum class Reading { some, nothing, ended };
  // Waits at most `longest` for output and appends what there is to `output`: some, nothing yet, or nothing
  // any more, since the program has ended.
  Reading read(std::string& output, std::chrono::milliseconds longest);

  // Ends it at once, with what it has started itself.
  void kill();

 private:
  struct System;
  std::unique_ptr<System> system_;
};

// Called by a program that runs as such a child: it ends with the one that has started it, and when it
// crashes it does so without a box or a dump.
void settleAsChild();

}  // namespace plumetta
