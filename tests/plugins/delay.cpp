// SPDX-License-Identifier: GPL-3.0-or-later
// Delays the sound by as many frames as its chunk says, 100 at first, and tells the host so at the start.
#include "test_plugin.h"

namespace plumetta {
namespace {

constexpr int32_t kMostFrames = 1 << 16;

class Delay : public TestPlugin {
 public:
  explicit Delay(HostCallbackFunction host)
      : TestPlugin(
            host, {"Test delay", "PtDl", 2, 2, 0, 1, effFlagsCanReplacing | effFlagsProgramChunks, kFrames}) {
    for (auto& line : lines_) line.resize(kMostFrames);
  }

 private:
  static constexpr int32_t kFrames = 100;

  void process(float** inputs, float** outputs, int frames) override {
    for (int i = 0; i < frames; ++i) {
      const auto write = static_cast<size_t>(at_ % kMostFrames);
      const auto read = static_cast<size_t>((at_ + kMostFrames - frames_) % kMostFrames);
      for (int c = 0; c < 2; ++c) {
        lines_[c][write] = inputs[c][i];
        outputs[c][i] = lines_[c][read];
      }
      ++at_;
    }
  }
  intptr_t call(int32_t opcode, int32_t index, intptr_t value, void* pointer, float number) override {
    if (opcode == effGetChunk) {
      *static_cast<void**>(pointer) = &frames_;
      return sizeof frames_;
    }
    if (opcode == effSetChunk && value == sizeof frames_) {
      std::memcpy(&frames_, pointer, sizeof frames_);
      frames_ = std::clamp(frames_, 0, kMostFrames - 1);
      return 1;
    }
    return TestPlugin::call(opcode, index, value, pointer, number);
  }

  int32_t frames_ = kFrames;
  int64_t at_ = 0;
  std::vector<float> lines_[2];
};

}  // namespace

AEffect* makeTestPlugin(HostCallbackFunction host) { return (new Delay(host))->effect(); }

}  // namespace plumetta
