// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/asio_driver.h"

namespace plumetta {

// What a driver that plays into memory is like, and what goes wrong in it.
struct FakeAsioPlan {
  int inputs = 2, outputs = 2;
  int32_t frames = 64;
  std::vector<int32_t> types{16};  // of channel k: the one at k modulo their number
  std::set<int> refusedRates;
  double externalRate = 0;  // Hz of a clock that can't be set; 0 for none
  bool takesOutputReady = true;
  // Operations by the names of the interface, "getChannels" and so on.
  std::set<std::string> fails, throws, hangs;
  std::atomic<bool> released{false};           // those that hang come back
  std::function<void()> whileItHangs = [] {};  // again and again, on the thread that hangs
};

// Plays into memory whenever switchBuffers() is called.
class FakeAsioDriver : public AsioDriver {
 public:
  static constexpr uint8_t kUntouched = 0xEE;

  explicit FakeAsioDriver(const FakeAsioPlan& plan) : plan_(plan) {}
  virtual ~FakeAsioDriver() = default;

  // One buffer asked for by the driver's own thread, and kept.
  void switchBuffers(bool withTime = true) {
    for (Memory& each : memory_) std::fill(each.half[half_].begin(), each.half[half_].end(), kUntouched);
    const AsioCallbacks callbacks = *callbacks_;
    withTime ? void(callbacks.bufferSwitchTimeInfo(nullptr, half_, 1)) : callbacks.bufferSwitch(half_, 1);
    const std::lock_guard held(mutex_);
    for (size_t i = 0; i < memory_.size(); ++i) {
      if (infos_[i].isInput != 0) continue;
      std::vector<uint8_t>& out = played_[infos_[i].channel];
      out.insert(out.end(), memory_[i].half[half_].begin(), memory_[i].half[half_].end());
    }
    half_ = 1 - half_;
  }
  AsioCallbacks* callbacks() const { return callbacks_; }

  std::vector<std::string> calls() const {
    const std::lock_guard held(mutex_);
    return calls_;
  }
  // Of each output with a buffer.
  std::map<int, std::vector<uint8_t>> played() const {
    const std::lock_guard held(mutex_);
    return played_;
  }
  double rate() const { return rate_; }
  int references() const { return references_; }

  int32_t QueryInterface(const AsioClassId&, void** object) override {
    *object = this;
    AddRef();
    return 0;
  }
  uint32_t AddRef() override { return static_cast<uint32_t>(++references_); }
  uint32_t Release() override {
    note("Release");
    return static_cast<uint32_t>(--references_);
  }

  AsioBool init(void*) override { return note("init") == kAsioOk ? 1 : 0; }
  void getDriverName(char* name) override { std::strcpy(name, "Test driver"); }
  int32_t getDriverVersion() override { return 0x12A; }
  void getErrorMessage(char* text) override { std::strcpy(text, "all is well"); }
  AsioError start() override { return note("start"); }
  AsioError stop() override { return note("stop"); }
  AsioError getChannels(int32_t* inputs, int32_t* outputs) override {
    *inputs = plan_.inputs;
    *outputs = plan_.outputs;
    return note("getChannels");
  }
  AsioError getLatencies(int32_t* inputFrames, int32_t* outputFrames) override {
    *inputFrames = plan_.frames + 1;
    *outputFrames = plan_.frames + 2;
    return note("getLatencies");
  }
  AsioError getBufferSize(int32_t* minimum, int32_t* maximum, int32_t* preferred,
                          int32_t* granularity) override {
    *minimum = 16;
    *maximum = 8192;
    *preferred = plan_.frames;
    *granularity = -1;
    return note("getBufferSize");
  }
  AsioError canSampleRate(AsioSampleRate rate) override {
    note("canSampleRate");
    return plan_.refusedRates.contains(static_cast<int>(rate)) ? kClockMissing : kAsioOk;
  }
  AsioError getSampleRate(AsioSampleRate* rate) override {
    *rate = rate_;
    return note("getSampleRate");
  }
  AsioError setSampleRate(AsioSampleRate rate) override {
    rate_ = plan_.externalRate > 0 ? plan_.externalRate : rate;
    const AsioError error = note("setSampleRate " + std::to_string(static_cast<int>(rate)));
    return plan_.externalRate > 0 ? kClockMissing : error;
  }
  AsioError getClockSources(AsioClockSource*, int32_t*) override { return kAsioNotPresent; }
  AsioError setClockSource(int32_t) override { return kAsioNotPresent; }
  AsioError getSamplePosition(int64_t*, int64_t*) override { return kAsioNotPresent; }
  AsioError getChannelInfo(AsioChannelInfo* info) override {
    const int count = info->isInput != 0 ? plan_.inputs : plan_.outputs;
    if (info->channel < 0 || info->channel >= count) return kAsioNotPresent;
    info->isActive = 1;
    info->group = info->channel / 8;
    info->sampleType = typeOf(info->channel);
    std::string name = (info->isInput != 0 ? "In " : "Out ") + std::to_string(info->channel + 1);
    std::memcpy(info->name, name.c_str(), name.size() + 1);
    return note("getChannelInfo");
  }
  AsioError createBuffers(AsioBufferInfo* infos, int32_t count, int32_t frames,
                          AsioCallbacks* callbacks) override {
    infos_.assign(infos, infos + count);
    memory_.assign(infos_.size(), {});
    for (size_t i = 0; i < infos_.size(); ++i) {
      const size_t bytes = static_cast<size_t>(frames) * bytesOf(typeOf(infos_[i].channel));
      for (int half : {0, 1}) {
        memory_[i].half[half].assign(bytes, kUntouched);
        infos[i].buffers[half] = memory_[i].half[half].data();
      }
    }
    callbacks_ = callbacks;
    return note("createBuffers " + std::to_string(count));
  }
  AsioError disposeBuffers() override {
    memory_.clear();
    return note("disposeBuffers");
  }
  AsioError controlPanel() override { return note("controlPanel"); }
  AsioError future(int32_t, void*) override { return kAsioNotPresent; }
  AsioError outputReady() override {
    ++outputReadies;
    return plan_.takesOutputReady ? kAsioOk : kAsioNotPresent;
  }

  std::atomic<int> outputReadies{0};

 protected:
  virtual AsioError note(const std::string& call) {
    const std::string name = call.substr(0, call.find(' '));
    {
      const std::lock_guard held(mutex_);
      calls_.push_back(call);
    }
    while (plan_.hangs.contains(name) && !plan_.released) {
      plan_.whileItHangs();
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (plan_.throws.contains(name)) throw std::runtime_error(name);
    return plan_.fails.contains(name) ? kHardwareFault : kAsioOk;
  }

 private:
  static constexpr AsioError kHardwareFault = -999, kClockMissing = -995;
  struct Memory {
    std::vector<uint8_t> half[2];
  };

  int32_t typeOf(int32_t channel) const {
    return plan_.types[static_cast<size_t>(channel) % plan_.types.size()];
  }
  // The types of 16 and 24 bits, and 64-bit floats; all others, known or not, take 4 bytes.
  static size_t bytesOf(int32_t type) {
    return type == 0 || type == 16 ? 2 : type == 1 || type == 17 ? 3 : type == 4 || type == 20 ? 8 : 4;
  }

  const FakeAsioPlan& plan_;
  mutable std::mutex mutex_;
  std::vector<std::string> calls_;
  std::map<int, std::vector<uint8_t>> played_;
  std::vector<AsioBufferInfo> infos_;
  std::vector<Memory> memory_;
  AsioCallbacks* callbacks_ = nullptr;
  int half_ = 0;
  double rate_ = 0;
  std::atomic<int> references_{1};
};

}  // namespace plumetta
