// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <cstring>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "audio/pull_session.h"
#include "platform/wave_in_device.h"

namespace plumetta {

// No time passes: neither a device nor a disk is ever found too slow, whatever holds up the test's thread.
struct StillTimer : PollTimer {
  std::chrono::milliseconds now() noexcept override { return {}; }
  void sleep(std::chrono::milliseconds) noexcept override {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
};

// An input system with one device, which delivers what a test gives it, on the test's own thread.
class FakeWaveIn : public WaveInSystem {
 public:
  static constexpr int kOk = 0, kRefused = 7, kGone = 8;

  // Failures on demand.
  std::atomic<int> openError{kOk}, queueError{kOk}, startError{kOk}, failureTold{kOk}, countError{kOk};
  uint32_t formats = kStereo16At44100 | kStereo16At96000;
  bool refusesToClose = false;

  // How it was last opened.
  WaveInFormat format;
  std::atomic<int> opened{0}, closed{0};

  // Fills the next queued buffer, `short` ones in part, and reports it. False when none was queued in time.
  bool deliver(const std::vector<uint8_t>& bytes) {
    Header* header = nullptr;
    if (!eventually([&] { return (header = takeQueued()) != nullptr; })) return false;
    std::memcpy(header->bytes, bytes.data(), std::min(bytes.size(), size_t{header->size}));
    header->done_ = true;
    handler_(context_, *header);
    return true;
  }
  // A block in which every 16-bit sample of both channels has the value.
  bool deliver16(int16_t value, int frames) {
    std::vector<uint8_t> bytes(static_cast<size_t>(frames) * 4);
    for (size_t i = 0; i < bytes.size(); i += 2) std::memcpy(&bytes[i], &value, 2);
    return deliver(bytes);
  }

  // Waits for what another thread is about to bring about; a minute is for ever.
  static bool eventually(const std::function<bool()>& condition) {
    for (int i = 0; i < 60000; ++i) {
      if (condition()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
  }

  int countDevices(int& count) override {
    count = countError == kOk ? 1 : 0;
    return countError;
  }
  int capabilities(int index, WaveInCapabilities& capabilities) override {
    if (index != 0) return kGone;
    capabilities = {"Fake input", formats};
    return kOk;
  }
  int open(int index, const WaveInFormat& wanted, WaveInHandler handler, void* context,
           std::unique_ptr<WaveInDevice>& device) override {
    if (index != 0) return kGone;
    if (openError != kOk) return openError;
    format = wanted;
    handler_ = handler;
    context_ = context;
    ++opened;
    device = std::make_unique<Device>(*this);
    return kOk;
  }
  std::unique_ptr<WaveInHeader> newHeader() override { return std::make_unique<Header>(); }
  std::string errorText(int error) override { return "fake error " + std::to_string(error); }

 private:
  struct Header : WaveInHeader {
    bool done() const noexcept override { return done_; }
    void assign(void* data, uint32_t length) noexcept override {
      bytes = data;
      size = length;
      done_ = false;
    }
    void* bytes = nullptr;
    uint32_t size = 0;
    std::atomic<bool> done_{false};
  };

  class Device : public WaveInDevice {
   public:
    explicit Device(FakeWaveIn& owner) : owner_(owner) {}
    int prepare(WaveInHeader&) noexcept override { return kOk; }
    int unprepare(WaveInHeader&) noexcept override { return kOk; }
    int queue(WaveInHeader& header) noexcept override {
      if (owner_.queueError != kOk) return owner_.queueError;
      const std::lock_guard held(owner_.mutex_);
      static_cast<Header&>(header).done_ = false;
      owner_.queued_.push_back(&static_cast<Header&>(header));
      return kOk;
    }
    int start() noexcept override { return owner_.startError; }
    int failure() const noexcept override { return owner_.failureTold; }
    int reset() noexcept override {
      while (Header* header = owner_.takeQueued()) {
        header->done_ = true;
        owner_.handler_(owner_.context_, *header);
      }
      return kOk;
    }
    int close() noexcept override {
      if (owner_.refusesToClose) return kRefused;
      ++owner_.closed;
      return kOk;
    }

   private:
    FakeWaveIn& owner_;
  };

  Header* takeQueued() {
    const std::lock_guard held(mutex_);
    if (queued_.empty()) return nullptr;
    Header* header = queued_.front();
    queued_.pop_front();
    return header;
  }

  std::mutex mutex_;
  std::deque<Header*> queued_;
  WaveInHandler handler_ = nullptr;
  void* context_ = nullptr;
};

}  // namespace plumetta
