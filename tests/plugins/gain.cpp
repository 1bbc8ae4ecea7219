// SPDX-License-Identifier: GPL-3.0-or-later
// A factor from 0 to 2, one half at first.
#include "test_plugin.h"

namespace plumetta {
namespace {

class Gain : public TestPlugin {
 public:
  explicit Gain(HostCallbackFunction host) : TestPlugin(host, {"Test gain", "PtGn", 2, 2, 1}) {
    values_[0] = 0.25f;
  }

 private:
  void process(float** inputs, float** outputs, int frames) override {
    const float factor = 2.0f * values_[0];
    for (int c = 0; c < 2; ++c) {
      for (int i = 0; i < frames; ++i) outputs[c][i] = factor * inputs[c][i];
    }
  }
  bool text(int32_t opcode, int index, std::string& answer) override {
    if (opcode == effGetParamName) answer = "Gain";
    if (opcode == effGetParamLabel) answer = "x";
    if (opcode == effGetParamDisplay) answer = decimal(2.0f * get(index));
    return TestPlugin::text(opcode == effGetParamName || opcode == effGetParamDisplay ? -1 : opcode, index,
                            answer);
  }
};

}  // namespace

AEffect* makeTestPlugin(HostCallbackFunction host) { return (new Gain(host))->effect(); }

}  // namespace plumetta
