// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/pull_session.h"

#include <algorithm>
#include <thread>

#include "audio/sample_output.h"
#include "platform/thread_priority.h"

namespace plumetta {
namespace {

using std::chrono::milliseconds;

// Beyond the time that a buffer plays, a device may take this long before it counts as dead. For the first
// buffer some need longer: they wake up, or have silence of two seconds under way.
constexpr milliseconds kStallLimit{1500};
constexpr milliseconds kFirstBufferLimit{4000};
// Time in which the whole computer slept is not held against the device.
constexpr milliseconds kLongestPass{250};
constexpr milliseconds kReturnPoll{10};
constexpr int kReturnChecks = 201;

class SteadyPollTimer : public PollTimer {
 public:
  milliseconds now() noexcept override {
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
  }
  void sleep(milliseconds time) noexcept override { std::this_thread::sleep_for(time); }
};

}  // namespace

PollTimer& steadyPollTimer() {
  static SteadyPollTimer timer;
  return timer;
}

PullSession::PullSession(WaveOutSystem& system, PollTimer& timer, const Parameters& parameters)
    : system_(system),
      timer_(timer),
      parameters_(parameters),
      bufferBytes_(static_cast<uint32_t>(parameters.format.channels * parameters.format.bitsPerSample *
                                         parameters.format.bufferFrames / 8)) {
  const WaveOutFormat& format = parameters_.format;
  const int bytes = format.channels * format.bufferFrames * sampleMemoryBytes(format.bitsPerSample);
  for (int i = 0; i < format.bufferCount; ++i) {
    Slot& slot = slots_.emplace_back();
    slot.memory.resize(static_cast<size_t>(bytes));
    slot.header = system_.newHeader();
    slot.header->assign(slot.memory.data(), bufferBytes_);
    slot.header->setDone();  // so that the first pass fills every buffer
  }
}

PullSession::~PullSession() {
  if (device_ == nullptr || closed_) return;
  close();
  // Buffers that even now aren't given back stay for good: the device might still read them.
  if (!closed_) new std::vector<Slot>(std::move(slots_));
}

int PullSession::open() { return system_.open(parameters_.deviceIndex, parameters_.format, device_); }

void PullSession::run() noexcept {
  raiseThreadPriority();
  lastPass_ = timer_.now();
  while (!stop_) {
    watch(fillPass());
    if (!stop_) timer_.sleep(parameters_.poll);
  }
  ended_.set();
}

// Fills what the device has finished, in ring order; how many that were. A device that finishes its buffers
// at once doesn't keep the thread from hearing that it is to stop.
int PullSession::fillPass() noexcept {
  int filled = 0;
  while (!stop_ && filled < parameters_.format.bufferCount && slots_[next_].header->done()) {
    if (!refill(slots_[next_])) return filled;
    next_ = (next_ + 1) % slots_.size();
    ++filled;
  }
  return filled;
}

bool PullSession::refill(Slot& slot) noexcept {
  unprepare(slot);
  int frames = parameters_.format.bufferFrames;
  int channelCount = parameters_.format.channels;
  parameters_.callback(parameters_.context, channels_.data(), &frames, &channelCount);
  convertSamples(channels_.data(), parameters_.format.channels, parameters_.format.bufferFrames,
                 parameters_.format.bitsPerSample, slot.memory.data());
  slot.header->assign(slot.memory.data(), bufferBytes_);
  if (const int error = device_->prepare(*slot.header)) {
    fail(error);
    for (Slot& each : slots_) each.header->setDone();
    return false;
  }
  slot.prepared = true;
  if (written_ > 0 && allDone(&slot)) ++underruns_;
  if (const int error = device_->write(*slot.header)) {
    fail(error);
    slot.header->setDone();  // the device never had it
    return false;
  }
  ++written_;
  return true;
}

// A device that has died without a word keeps its buffers for ever; nothing else would tell.
void PullSession::watch(int filled) noexcept {
  const milliseconds now = timer_.now();
  stalled_ = filled > 0 ? milliseconds{0} : stalled_ + std::min(now - lastPass_, kLongestPass);
  lastPass_ = now;
  const milliseconds limit = written_ > parameters_.format.bufferCount ? kStallLimit : kFirstBufferLimit;
  const WaveOutFormat& format = parameters_.format;
  const milliseconds bufferTime{int64_t{1000} * format.bufferFrames / format.sampleRate};
  if (stalled_ > bufferTime + limit) fail(kDeviceStalled);
}

void PullSession::fail(int error) noexcept {
  if (error_ == 0) error_ = error;
  stop_ = true;
}

bool PullSession::allDone(const Slot* but) const noexcept {
  return std::all_of(slots_.begin(), slots_.end(),
                     [&](const Slot& slot) { return &slot == but || slot.header->done(); });
}

void PullSession::unprepare(Slot& slot) noexcept {
  // Its failing changes nothing by itself: a buffer that is still in use makes closing the device fail.
  if (slot.prepared && device_->unprepare(*slot.header) == 0) slot.prepared = false;
}

int PullSession::close() {
  const int resetError = device_->reset();
  for (int check = 1; resetError == 0 && !allDone() && check < kReturnChecks; ++check) {
    timer_.sleep(kReturnPoll);
  }
  for (Slot& slot : slots_) unprepare(slot);
  const int closeError = device_->close();
  closed_ = closeError == 0;
  return resetError != 0 ? resetError : closeError;
}

}  // namespace plumetta
