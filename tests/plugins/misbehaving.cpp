// SPDX-License-Identifier: GPL-3.0-or-later
// Does wrong what the environment's PLUMETTA_TEST_FAULT says when it is made: see kFaults.
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <thread>

#include "test_plugin.h"

namespace plumetta {
namespace {

enum Fault {
  kNone,
  kNull,          // no effect
  kWrongMagic,    //
  kNoDispatcher,  //
  kAsksEarly,     // calls the host from its constructor
  kNan,           // samples that are no numbers, from the second block on
  kLies,          // claims numbers of everything that can't be, and uses all 64 channels
  kLongNames,     // more bytes than published, not all of them text
  kSlow,          // takes 20 ms a block
  kCrashEntry,
  kHangEntry,
  kCrashOpen,
  kCrashProcess,
  kHangProcess,  // until letGo() is called
  kCrashClose,
  kThrowProcess,
  kUpdatesItself,  // asks to be redrawn whenever it is
};

constexpr const char* kFaults[] = {
    "none",          "null",         "wrong-magic", "no-dispatcher", "asks-early",    "nan",
    "lies",          "long-names",   "slow",        "crash-entry",   "hang-entry",    "crash-open",
    "crash-process", "hang-process", "crash-close", "throw-process", "updates-itself"};

Fault chosenFault() {
  const char* name = std::getenv("PLUMETTA_TEST_FAULT");
  for (size_t i = 0; name != nullptr && i < std::size(kFaults); ++i) {
    if (std::strcmp(name, kFaults[i]) == 0) return static_cast<Fault>(i);
  }
  return kNone;
}

std::atomic<bool> released{false};
std::atomic<int> guests{0};

// Of a thread that has hung here, until it ends.
struct Guest {
  Guest() { ++guests; }
  ~Guest() { --guests; }
};

void crash() {
  volatile uintptr_t nowhere = 16;  // no null pointer, which a sanitizer would see coming
  *reinterpret_cast<volatile int*>(nowhere) = 1;
}

void hang() {
  // With its room made when the thread begins: a leak checker loses its way in what a library adds later.
  [[gnu::tls_model("initial-exec")]] thread_local const Guest guest;
  while (!released) std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

class Misbehaving : public TestPlugin {
 public:
  Misbehaving(HostCallbackFunction host, Fault fault)
      : TestPlugin(host, {"Test misbehaving", "PtMi"}), fault_(fault) {
    if (fault == kWrongMagic) effect()->magic = 0;
    if (fault == kNoDispatcher) effect()->dispatcher = nullptr;
    if (fault == kAsksEarly) askEverything();
    if (fault == kLies) {
      effect()->numInputs = effect()->numOutputs = std::numeric_limits<int32_t>::max();
      effect()->numParams = effect()->numPrograms = -5;
      effect()->initialDelay = -100;
    }
  }

 private:
  void askEverything() {
    char text[256] = "supplyIdle";
    for (int32_t opcode = -1; opcode <= 60; ++opcode) {
      pluginJournal() += std::to_string(host_(nullptr, opcode, 0, 0, text, 0.0f) != 0 ? opcode : 0) + " ";
      host_(effect(), opcode, 0, 0, text, 0.0f);
    }
  }
  void process(float** inputs, float** outputs, int frames) override {
    if (fault_ == kCrashProcess) crash();
    if (fault_ == kHangProcess) hang();
    if (fault_ == kThrowProcess) throw 1;
    if (fault_ == kSlow) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const int channels = fault_ == kLies ? 64 : 2;
    for (int c = 0; c < channels; ++c) {
      for (int i = 0; i < frames; ++i) outputs[c][i] = inputs[c][i];
    }
    if (fault_ == kNan && blocks_++ > 0) {
      outputs[0][frames / 2] = std::numeric_limits<float>::quiet_NaN();
      outputs[1][0] = std::numeric_limits<float>::infinity();
    }
  }
  bool text(int32_t opcode, int index, std::string& answer) override {
    if (fault_ != kLongNames) return TestPlugin::text(opcode, index, answer);
    if (opcode == effGetEffectName) answer = std::string(31, 'n') + "\xC3\xA9" + std::string(200, 'n');
    if (opcode == effGetVendorString) answer = "Caf\xE9 " + std::string(240, 'v');
    return !answer.empty();
  }
  intptr_t call(int32_t opcode, int32_t index, intptr_t value, void* pointer, float number) override {
    if (fault_ == kCrashOpen && opcode == effOpen) crash();
    if (fault_ == kCrashClose && opcode == effClose) crash();
    if (fault_ == kUpdatesItself && opcode == effEditIdle) askHost(audioMasterUpdateDisplay);
    return TestPlugin::call(opcode, index, value, pointer, number);
  }

  const Fault fault_;
  int blocks_ = 0;
};

}  // namespace

AEffect* makeTestPlugin(HostCallbackFunction host) {
  const Fault fault = chosenFault();
  if (fault == kNull) return nullptr;
  if (fault == kCrashEntry) crash();
  if (fault == kHangEntry) hang();
  if (fault == kWrongMagic || fault == kNoDispatcher) {
    static Misbehaving refused(host, fault);  // nobody will tell it to close
    return refused.effect();
  }
  return (new Misbehaving(host, fault))->effect();
}

}  // namespace plumetta

extern "C" {
void letGo(bool go) { plumetta::released = go; }
// Threads that have hung and are not over.
int hungThreads() { return plumetta::guests; }
}
