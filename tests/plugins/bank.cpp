// SPDX-License-Identifier: GPL-3.0-or-later
// Four programs with names and three values each; adds the first value of the program to the sound.
#include "test_plugin.h"

namespace plumetta {
namespace {

constexpr int kPrograms = 4;
constexpr int kValues = 3;

class Bank : public TestPlugin {
 public:
  explicit Bank(HostCallbackFunction host)
      : TestPlugin(host, {"Test bank", "PtBk", 2, 2, kValues, kPrograms}) {
    for (int p = 0; p < kPrograms; ++p) {
      programs_[p].name = "Preset " + std::string(1, static_cast<char>('A' + p));
      for (int v = 0; v < kValues; ++v)
        programs_[p].values[v] = 0.125f * static_cast<float>(p) + 0.25f * static_cast<float>(v);
    }
  }

 private:
  struct Program {
    std::string name;
    float values[kValues];
  };

  Program& present() { return programs_[std::clamp(program_.load(), 0, kPrograms - 1)]; }
  void process(float** inputs, float** outputs, int frames) override {
    for (int c = 0; c < 2; ++c) {
      for (int i = 0; i < frames; ++i) outputs[c][i] = inputs[c][i] + present().values[0];
    }
  }
  float get(int index) override { return index >= 0 && index < kValues ? present().values[index] : -1.0f; }
  void set(int index, float value) override {
    if (index >= 0 && index < kValues) present().values[index] = value;
  }
  bool text(int32_t opcode, int index, std::string& answer) override {
    if (opcode == effGetProgramName) {
      answer = present().name;
      return true;
    }
    if (opcode == effGetProgramNameIndexed) {
      answer = programs_[std::clamp(index, 0, kPrograms - 1)].name;
      return true;
    }
    return TestPlugin::text(opcode, index, answer);
  }
  intptr_t call(int32_t opcode, int32_t index, intptr_t value, void* pointer, float number) override {
    if (opcode == effSetProgramName) present().name = static_cast<const char*>(pointer);
    return TestPlugin::call(opcode, index, value, pointer, number);
  }

  Program programs_[kPrograms];
};

}  // namespace

AEffect* makeTestPlugin(HostCallbackFunction host) { return (new Bank(host))->effect(); }

}  // namespace plumetta
