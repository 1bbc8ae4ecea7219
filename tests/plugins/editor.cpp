// SPDX-License-Identifier: GPL-3.0-or-later
// Has an editor, whose size it knows only once that is open, and a latency that it knows only once it works.
#include <utility>

#include "editor_window.h"
#include "test_plugin.h"

namespace plumetta {
namespace {

class WithEditor : public TestPlugin {
 public:
  explicit WithEditor(HostCallbackFunction host)
      : TestPlugin(host, {"Test editor", "PtEd", 2, 2, 3, 4, effFlagsCanReplacing | effFlagsHasEditor}) {}

 private:
  void process(float** inputs, float** outputs, int frames) override {
    effect()->initialDelay = 64;
    for (int c = 0; c < 2; ++c) std::copy_n(inputs[c], frames, outputs[c]);
  }
  intptr_t call(int32_t opcode, int32_t index, intptr_t value, void* pointer, float number) override {
    if (opcode == effEditGetRect) *static_cast<ERect**>(pointer) = window_ != nullptr ? &size_ : nullptr;
    if (opcode == effEditOpen) window_ = openEditorWindow(pointer, size_.right, size_.bottom);
    if (opcode == effEditClose) closeEditorWindow(std::exchange(window_, nullptr));
    if (opcode == effEditGetRect || opcode == effEditOpen) return window_ != nullptr;
    return TestPlugin::call(opcode, index, value, pointer, number);
  }

  ERect size_{0, 0, 210, 330};  // top, left, bottom, right
  void* window_ = nullptr;
};

}  // namespace

AEffect* makeTestPlugin(HostCallbackFunction host) { return (new WithEditor(host))->effect(); }

}  // namespace plumetta
