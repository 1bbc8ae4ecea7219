// SPDX-License-Identifier: GPL-3.0-or-later
// Puts what it hears of time into the sound: the position in quarter notes, and the transport's two flags.
#include "test_plugin.h"

namespace plumetta {
namespace {

class Clock : public TestPlugin {
 public:
  explicit Clock(HostCallbackFunction host) : TestPlugin(host, {"Test clock", "PtCl"}) {}

 private:
  void process(float**, float** outputs, int frames) override {
    const auto* time = reinterpret_cast<const VstTimeInfo*>(askHost(audioMasterGetTime));
    for (int i = 0; i < frames; ++i) {
      outputs[0][i] = static_cast<float>(time->ppqPos / 1024.0);
      outputs[1][i] = static_cast<float>(time->flags & (kVstTransportChanged | kVstTransportPlaying)) / 4.0f;
    }
  }
};

}  // namespace

AEffect* makeTestPlugin(HostCallbackFunction host) { return (new Clock(host))->effect(); }

}  // namespace plumetta
