// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <thread>

#include "platform/shared_library.h"
#include "support/test_plugins.h"

namespace plumetta {

// The misbehaving plug-in hangs in processing for as long as this lives.
class Hanging {
 public:
  Hanging() {
    library_.open(testPlugin("misbehaving"));
    letGo(false);
    chooseFault("hang-process");
  }
  // Threads that were left behind find what they use as long as they live.
  ~Hanging() {
    end();
    while (library_.function<int()>("hungThreads")() > 0) std::this_thread::yield();
    chooseFault("none");
  }
  void end() { letGo(true); }

 private:
  void letGo(bool go) { library_.function<void(bool)>("letGo")(go); }

  SharedLibrary library_;
};

}  // namespace plumetta
