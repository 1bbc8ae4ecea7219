// SPDX-License-Identifier: GPL-3.0-or-later
// Eight channels: adds up all its inputs, gives the sum to the first output and one to each of the others.
#include "test_plugin.h"

namespace plumetta {
namespace {

constexpr int kChannels = 8;

class Eight : public TestPlugin {
 public:
  explicit Eight(HostCallbackFunction host)
      : TestPlugin(host, {"Test eight", "Pt8C", kChannels, kChannels}) {}

 private:
  void process(float** inputs, float** outputs, int frames) override {
    for (int i = 0; i < frames; ++i) {
      float sum = 0.0f;
      for (int c = 0; c < kChannels; ++c) sum += inputs[c][i];
      for (int c = 0; c < kChannels; ++c) outputs[c][i] = c == 0 ? sum : 1.0f;
    }
  }
};

}  // namespace

AEffect* makeTestPlugin(HostCallbackFunction host) { return (new Eight(host))->effect(); }

}  // namespace plumetta
