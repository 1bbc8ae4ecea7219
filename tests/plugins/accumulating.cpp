// SPDX-License-Identifier: GPL-3.0-or-later
// Can't replace, which nobody asks of it either.
#include "test_plugin.h"

namespace plumetta {
namespace {

class Accumulating : public TestPlugin {
 public:
  explicit Accumulating(HostCallbackFunction host)
      : TestPlugin(host, {"Test adder", "PtAd", 2, 2, 0, 1, 0}) {}

 private:
  void process(float**, float** outputs, int) override { outputs[0][0] = 99.0f; }
};

}  // namespace

AEffect* makeTestPlugin(HostCallbackFunction host) { return (new Accumulating(host))->effect(); }

}  // namespace plumetta
