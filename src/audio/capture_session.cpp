// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/capture_session.h"

#include <algorithm>

#include "audio/sample_input.h"

namespace plumetta {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPoll{10};
// Beyond the time that a buffer lasts, a device may take this long before it counts as dead.
constexpr milliseconds kStallLimit{1500};
// Some wake up slowly.
constexpr milliseconds kFirstLimit{4000};
// Time in which the whole computer slept is not held against the device.
constexpr milliseconds kLongestPass{250};

}  // namespace

CaptureSession::CaptureSession(WaveInSystem& system, PollTimer& timer, const Parameters& parameters)
    : system_(system), timer_(timer), parameters_(parameters) {
  const WaveInFormat& format = parameters_.format;
  const size_t bytes = static_cast<size_t>(format.channels) * static_cast<size_t>(format.bufferFrames) *
                       static_cast<size_t>(format.bitsPerSample / 8);
  for (int i = 0; i < std::min(parameters_.bufferCount, kMostBuffers); ++i) {
    Buffer& buffer = *buffers_.emplace_back(std::make_unique<Buffer>());
    buffer.memory.resize(bytes);
    buffer.header = system_.newHeader();
    buffer.header->assign(buffer.memory.data(), static_cast<uint32_t>(bytes));
  }
}

CaptureSession::~CaptureSession() {
  if (closed_) return;
  close();
  // Buffers that even now aren't given back stay for good: the device might still write to them.
  if (!closed_) new std::vector<std::unique_ptr<Buffer>>(std::move(buffers_));
}

int CaptureSession::open(int deviceIndex) {
  const int error = system_.open(deviceIndex, parameters_.format, onData, this, device_);
  closed_ = error != 0;
  return error;
}

int CaptureSession::start() {
  for (auto& buffer : buffers_) {
    if (const int error = device_->prepare(*buffer->header)) return error;
    buffer->prepared = true;
    if (const int error = device_->queue(*buffer->header)) return error;
  }
  return device_->start();
}

void CaptureSession::onData(void* session, WaveInHeader& header) noexcept {
  auto* own = static_cast<CaptureSession*>(session);
  for (auto& buffer : own->buffers_) {
    if (buffer->header.get() == &header) own->convert(*buffer), buffer->converted = true;
  }
}

// All frames of the buffer, whatever the device says it has recorded.
void CaptureSession::convert(const Buffer& buffer) noexcept {
  const std::lock_guard held(callbackMutex_);
  if (silenced_) return;
  const WaveInFormat& format = parameters_.format;
  const auto samples = static_cast<size_t>(format.channels) * static_cast<size_t>(format.bufferFrames);
  convertCaptured(buffer.memory.data(), samples, format.bitsPerSample, parameters_.floatBuffer);
  const WaveInBlock block{format.bufferFrames, format.bitsPerSample, format.channels};
  parameters_.callback(parameters_.context, &block);
}

void CaptureSession::silence() {
  const std::lock_guard held(callbackMutex_);
  silenced_ = true;
}

void CaptureSession::run() noexcept {
  lastPass_ = timer_.now();
  while (!stop_) {
    watch(requeue());
    if (!stop_) timer_.sleep(kPoll);
  }
  ended_.set();
}

int CaptureSession::requeue() noexcept {
  int requeued = 0;
  for (auto& buffer : buffers_) {
    if (!buffer->header->done() || !buffer->converted) continue;
    buffer->converted = false;
    if (const int error = device_->queue(*buffer->header)) {
      fail(error);
      return requeued;
    }
    ++requeued;
  }
  return requeued;
}

// A device that has died may say so, or may just keep its buffers for ever.
void CaptureSession::watch(int requeued) noexcept {
  if (const int error = device_->failure()) fail(error);
  const milliseconds now = timer_.now();
  delivers_ = delivers_ || requeued > 0;
  stalled_ = requeued > 0 ? milliseconds{0} : stalled_ + std::min(now - lastPass_, kLongestPass);
  lastPass_ = now;
  const WaveInFormat& format = parameters_.format;
  const milliseconds bufferTime{int64_t{1000} * format.bufferFrames / format.sampleRate};
  if (stalled_ > bufferTime + (delivers_ ? kStallLimit : kFirstLimit)) fail(kDeviceStalled);
}

void CaptureSession::fail(int error) noexcept {
  int none = 0;
  error_.compare_exchange_strong(none, error);
  stop_ = true;
}

int CaptureSession::close() {
  if (closed_) return 0;
  const int resetError = device_->reset();
  for (auto& buffer : buffers_) {
    // Its failing changes nothing by itself: a buffer that is still in use makes closing the device fail.
    if (buffer->prepared && device_->unprepare(*buffer->header) == 0) buffer->prepared = false;
  }
  const int closeError = device_->close();
  closed_ = closeError == 0;
  return resetError != 0 ? resetError : closeError;
}

}  // namespace plumetta
