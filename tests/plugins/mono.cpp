// SPDX-License-Identifier: GPL-3.0-or-later
// One channel, halved; its entry has the older name.
#define PLUMETTA_OWN_ENTRY
#include "test_plugin.h"

namespace plumetta {
namespace {

class Mono : public TestPlugin {
 public:
  explicit Mono(HostCallbackFunction host) : TestPlugin(host, {"Test mono", "PtMo", 1, 1}) {}

 private:
  void process(float** inputs, float** outputs, int frames) override {
    for (int i = 0; i < frames; ++i) outputs[0][i] = 0.5f * inputs[0][i];
  }
};

}  // namespace
}  // namespace plumetta

extern "C" plumetta::AEffect* entryOfOld(plumetta::HostCallbackFunction host) __asm__("main");
extern "C" plumetta::AEffect* entryOfOld(plumetta::HostCallbackFunction host) {
  return (new plumetta::Mono(host))->effect();
}
