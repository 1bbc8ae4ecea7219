// SPDX-License-Identifier: GPL-3.0-or-later
// An instrument: no inputs, one eighth on its first output and one quarter on the second.
#include "test_plugin.h"

namespace plumetta {
namespace {

class Synth : public TestPlugin {
 public:
  explicit Synth(HostCallbackFunction host)
      : TestPlugin(host, {"Test synth", "PtSy", 0, 2, 0, 1, effFlagsCanReplacing | effFlagsIsSynth}) {}

 private:
  void process(float**, float** outputs, int frames) override {
    for (int i = 0; i < frames; ++i) {
      outputs[0][i] = 0.125f;
      outputs[1][i] = 0.25f;
    }
  }
};

}  // namespace

AEffect* makeTestPlugin(HostCallbackFunction host) { return (new Synth(host))->effect(); }

}  // namespace plumetta
