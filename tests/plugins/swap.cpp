// SPDX-License-Identifier: GPL-3.0-or-later
// Left becomes right. It keeps no longer block than it was told of.
#include "test_plugin.h"

namespace plumetta {
namespace {

class Swap : public TestPlugin {
 public:
  explicit Swap(HostCallbackFunction host) : TestPlugin(host, {"", "PtSw"}) {}

 private:
  void process(float** inputs, float** outputs, int frames) override {
    std::copy_n(inputs[0], frames, kept_.begin());
    std::copy_n(inputs[1], frames, outputs[0]);
    std::copy_n(kept_.begin(), frames, outputs[1]);
  }
  intptr_t call(int32_t opcode, int32_t index, intptr_t value, void* pointer, float number) override {
    if (opcode == effSetBlockSize) kept_.assign(static_cast<size_t>(value), 0.0f);
    return TestPlugin::call(opcode, index, value, pointer, number);
  }

  std::vector<float> kept_;
};

}  // namespace

AEffect* makeTestPlugin(HostCallbackFunction host) { return (new Swap(host))->effect(); }

}  // namespace plumetta
