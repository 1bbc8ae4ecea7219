// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "audio/pull_session.h"
#include "platform/wave_out_device.h"

namespace plumetta {

// Wave-out devices that play into memory, a buffer whenever play() is called, and fail where they are told
// to. Every call is noted, as "write 1" for that of the second header. Any thread.
class FakeWaveOut : public WaveOutSystem {
 public:
  std::vector<std::string> names{"Speaker", "Headphones"};
  // Operations that answer with an error from now on: "count", "name", "open", "prepare", "unprepare",
  // "write", "reset", "close". Error 7 reads "error 7".
  std::map<std::string, int> errors;
  std::set<int> refusedRates;
  std::atomic<bool> returnsBuffers{true};  // on reset
  std::atomic<bool> hangsInWrite{false};
  WaveOutFormat format;  // of the last that was opened

  // Plays the oldest buffer that is queued; true when there was one.
  bool play() {
    const std::lock_guard held(mutex_);
    if (queue_.empty()) return false;
    Header* header = queue_.front();
    queue_.pop_front();
    played_.insert(played_.end(), header->bytes, header->bytes + header->size);
    header->setDone();
    return true;
  }
  void playAll() {
    while (play()) continue;
  }

  std::vector<uint8_t> played() const { return locked(played_); }
  std::vector<std::string> calls() const { return locked(calls_); }
  void fail(const std::string& operation, int error) {
    const std::lock_guard held(mutex_);
    errors[operation] = error;
  }
  int headersAlive() const { return headersAlive_; }
  int devicesOpen() const { return devicesOpen_; }

  int countDevices(int& count) override {
    const int error = note("count");
    count = error != 0 ? 0 : static_cast<int>(names.size());
    return error;
  }
  int deviceName(int index, std::string& name) override {
    if (const int error = note("name")) return error;
    name = names.at(static_cast<size_t>(index));
    return 0;
  }
  int open(int index, const WaveOutFormat& wanted, std::unique_ptr<WaveOutDevice>& device) override {
    if (const int error = note("open", index)) return error;
    if (index >= static_cast<int>(names.size()) || refusedRates.count(wanted.sampleRate) != 0) return 32;
    format = wanted;
    device = std::make_unique<Device>(*this);
    return 0;
  }
  std::unique_ptr<WaveOutHeader> newHeader() override { return std::make_unique<Header>(*this); }
  std::string errorText(int error) override { return "error " + std::to_string(error); }

 private:
  struct Header : WaveOutHeader {
    explicit Header(FakeWaveOut& fake) : owner(fake), number(fake.headersMade_++) { ++owner.headersAlive_; }
    ~Header() override { --owner.headersAlive_; }
    bool done() const noexcept override { return isDone; }
    void setDone() noexcept override { isDone = true; }
    void assign(const void* data, uint32_t length) noexcept override {
      bytes = static_cast<const uint8_t*>(data);
      size = length;
      isDone = false;
    }
    FakeWaveOut& owner;
    int number;
    const uint8_t* bytes = nullptr;
    uint32_t size = 0;
    std::atomic<bool> isDone{false};
  };

  struct Device : WaveOutDevice {
    explicit Device(FakeWaveOut& fake) : owner(fake) {
      ++owner.devicesOpen_;
      owner.headersMade_ = 0;
    }
    ~Device() override { --owner.devicesOpen_; }
    int prepare(WaveOutHeader& header) noexcept override { return owner.note("prepare", header); }
    int unprepare(WaveOutHeader& header) noexcept override { return owner.note("unprepare", header); }
    int write(WaveOutHeader& header) noexcept override {
      const int error = owner.note("write", header);
      while (owner.hangsInWrite) std::this_thread::yield();
      const std::lock_guard held(owner.mutex_);
      if (error == 0) owner.queue_.push_back(static_cast<Header*>(&header));
      return error;
    }
    int reset() noexcept override {
      const int error = owner.note("reset");
      const std::lock_guard held(owner.mutex_);
      if (error == 0 && owner.returnsBuffers) {
        for (Header* header : owner.queue_) header->setDone();
        owner.queue_.clear();
      }
      return error;
    }
    int close() noexcept override { return owner.note("close"); }
    FakeWaveOut& owner;
  };

  int note(const std::string& operation, int number = -1) {
    const std::lock_guard held(mutex_);
    calls_.push_back(number < 0 ? operation : operation + " " + std::to_string(number));
    const auto error = errors.find(operation);
    return error != errors.end() ? error->second : 0;
  }
  int note(const std::string& operation, WaveOutHeader& header) {
    return note(operation, static_cast<Header&>(header).number % static_cast<int>(format.bufferCount));
  }
  template <typename T>
  T locked(const T& value) const {
    const std::lock_guard held(mutex_);
    return value;
  }

  mutable std::mutex mutex_;
  std::deque<Header*> queue_;
  std::vector<uint8_t> played_;
  std::vector<std::string> calls_;
  std::atomic<int> headersMade_{0}, headersAlive_{0}, devicesOpen_{0};
};

// Time that goes by only while somebody sleeps. Each sleep runs `onSleep` with its number, from 1.
class FakeTimer : public PollTimer {
 public:
  std::function<void(int)> onSleep = [](int) {};

  std::chrono::milliseconds now() noexcept override { return std::chrono::milliseconds{now_}; }
  void sleep(std::chrono::milliseconds time) noexcept override {
    now_ += time.count();
    onSleep(++sleeps_);
    std::this_thread::yield();
  }
  int sleeps() const { return sleeps_; }

 private:
  std::atomic<int64_t> now_{0};
  std::atomic<int> sleeps_{0};
};

}  // namespace plumetta
