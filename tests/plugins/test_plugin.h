// SPDX-License-Identifier: GPL-3.0-or-later
// What the plug-ins for tests share: a class behind the binary interface, and a journal of what it was told.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "vst/aeffect.h"

namespace plumetta {

// Everything that a host sees of a plug-in before it calls anything.
struct PluginFacts {
  const char* name;
  const char* id;  // four characters
  int32_t inputs = 2, outputs = 2, parameters = 0, programs = 1;
  int32_t flags = effFlagsCanReplacing;
  int32_t delay = 0;
};

namespace {
// "opcode[:number] ..." of every call but those for texts and chunks; one for all plug-ins of a library, and
// of it alone: one that libraries shared would be destroyed by the first that goes.
inline std::string& pluginJournal() {
  static std::string journal;
  return journal;
}
}  // namespace

class TestPlugin {
 public:
  TestPlugin(HostCallbackFunction host, const PluginFacts& facts)
      : host_(host), values_(static_cast<size_t>(std::max(facts.parameters, 0))), facts_(facts) {
    effect_.magic = kEffectMagic;
    effect_.dispatcher = onDispatch;
    effect_.setParameter = [](AEffect* e, int32_t i, float v) { of(e).set(i, v); };
    effect_.getParameter = [](AEffect* e, int32_t i) { return of(e).get(i); };
    effect_.processReplacing = [](AEffect* e, float** in, float** out, int32_t n) {
      of(e).process(in, out, n);
    };
    effect_.numPrograms = facts.programs;
    effect_.numParams = facts.parameters;
    effect_.numInputs = facts.inputs;
    effect_.numOutputs = facts.outputs;
    effect_.flags = facts.flags;
    effect_.initialDelay = facts.delay;
    effect_.uniqueID = facts.id[0] << 24 | facts.id[1] << 16 | facts.id[2] << 8 | facts.id[3];
    effect_.version = 3;
    effect_.object = this;
  }
  virtual ~TestPlugin() = default;

  AEffect* effect() { return &effect_; }

 protected:
  intptr_t askHost(int32_t opcode, int32_t index = 0, intptr_t value = 0, void* pointer = nullptr) {
    return host_(&effect_, opcode, index, value, pointer, 0.0f);
  }
  virtual void process(float** inputs, float** outputs, int frames) = 0;
  virtual float get(int index) { return valid(index) ? values_[static_cast<size_t>(index)] : -1.0f; }
  virtual void set(int index, float value) {
    if (valid(index)) values_[static_cast<size_t>(index)] = value;
  }
  // False for no text.
  virtual bool text(int32_t opcode, int index, std::string& answer) {
    if (opcode == effGetEffectName) answer = facts_.name;
    if (opcode == effGetVendorString) answer = "Plumetta tests";
    if (opcode == effGetProductString) answer = std::string(facts_.name) + " product";
    if (opcode == effGetParamName) answer = "Value " + std::to_string(index);
    if (opcode == effGetParamDisplay) answer = decimal(get(index));
    if (opcode == effGetProgramNameIndexed) answer = "Program " + std::to_string(index);
    if (opcode == effGetProgramName) answer = "Program " + std::to_string(program_);
    return !answer.empty();
  }
  virtual intptr_t call(int32_t opcode, int32_t /*index*/, intptr_t value, void* /*pointer*/,
                        float /*number*/) {
    if (opcode == effGetVstVersion) return 2400;
    if (opcode == effGetVendorVersion) return 7;
    if (opcode == effGetPlugCategory) return 1;
    if (opcode == effSetProgram) program_ = static_cast<int>(value);
    return opcode == effGetProgram ? program_.load() : 0;
  }

  static std::string decimal(float value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", static_cast<double>(value));
    return text;
  }

  HostCallbackFunction host_;
  std::atomic<int> program_{0};  // chosen on one thread while another one processes
  std::vector<float> values_;

 private:
  static TestPlugin& of(AEffect* effect) { return *static_cast<TestPlugin*>(effect->object); }
  bool valid(int index) const { return index >= 0 && static_cast<size_t>(index) < values_.size(); }

  static intptr_t onDispatch(AEffect* effect, int32_t opcode, int32_t index, intptr_t value, void* pointer,
                             float number) {
    TestPlugin& self = of(effect);
    std::string answer;
    if (self.text(opcode, index, answer)) {
      std::memcpy(pointer, answer.c_str(), answer.size() + 1);
      return 1;
    }
    note(opcode, value, pointer, number);
    const intptr_t result = self.call(opcode, index, value, pointer, number);
    if (opcode == effClose) delete &self;
    return result;
  }

  static void note(int32_t opcode, intptr_t value, void* pointer, float number) {
    if (opcode == effGetVstVersion || opcode == effGetVendorVersion || opcode == effGetPlugCategory) return;
    std::string& journal = pluginJournal();
    if (!journal.empty()) journal += ' ';
    journal += std::to_string(opcode);
    if (opcode == effSetSampleRate) journal += ":" + std::to_string(static_cast<int>(number));
    if (opcode == effSetBlockSize || opcode == effMainsChanged || opcode == effSetProgram) {
      journal += ":" + std::to_string(value);
    }
    if (opcode == effSetSpeakerArrangement) {
      const auto& stereo = *static_cast<VstSpeakerArrangement*>(pointer);
      const bool right = reinterpret_cast<void*>(value) == pointer && stereo.type == 1 &&
                         stereo.numChannels == 2 && stereo.speakers[0].type == 1 &&
                         stereo.speakers[1].type == 2;
      journal += right ? ":stereo" : ":other";
    }
  }

  PluginFacts facts_;
  AEffect effect_{};
};

// Makes the plug-in of a library; null refuses.
AEffect* makeTestPlugin(HostCallbackFunction host);

}  // namespace plumetta

#ifndef PLUMETTA_OWN_ENTRY
extern "C" {
plumetta::AEffect* VSTPluginMain(plumetta::HostCallbackFunction host) {
  return plumetta::makeTestPlugin(host);
}
// For the test, which opens the library a second time: what was told so far, forgotten with `forget`.
const char* readJournal(bool forget) {
  static std::string shown;
  shown = plumetta::pluginJournal();
  if (forget) plumetta::pluginJournal().clear();
  return shown.c_str();
}
}
#endif
