// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/wave_in_device.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "platform/posix/pulse_connection.h"

namespace plumetta {
namespace {

// The server converts to any format, so every source takes them all.
constexpr uint32_t kAllFormats =
    kStereo16At11025 | kStereo16At22050 | kStereo16At44100 | kStereo16At48000 | kStereo16At96000;

class Header : public WaveInHeader {
 public:
  bool done() const noexcept override { return done_.load(std::memory_order_acquire); }
  void setDone() noexcept { done_.store(true, std::memory_order_release); }
  void assign(void* data, uint32_t length) noexcept override {
    bytes = static_cast<char*>(data);
    size = length;
    rewind();
  }
  void rewind() noexcept {
    filled = 0;
    next = nullptr;
    done_.store(false, std::memory_order_relaxed);
  }

  char* bytes = nullptr;
  size_t size = 0;
  size_t filled = 0;
  Header* next = nullptr;

 private:
  std::atomic<bool> done_{false};
};

// A record stream of the sound server, with the headers that wait to be filled. What comes while none waits
// stays in the stream's own buffer, which holds seconds, until the next one is queued.
class Device : public WaveInDevice {
 public:
  Device(WaveInHandler handler, void* context) : handler_(handler), context_(context) {}
  ~Device() override { close(); }

  int open(int index, const WaveInFormat& format);

  int prepare(WaveInHeader&) noexcept override { return 0; }
  int unprepare(WaveInHeader&) noexcept override { return 0; }
  int queue(WaveInHeader& header) noexcept override;
  int start() noexcept override;
  int failure() const noexcept override { return error_.load(std::memory_order_acquire); }
  int reset() noexcept override;
  int close() noexcept override;

 private:
  int openStream(const char* source, const WaveInFormat& format);
  void fill() noexcept;
  void fillFrom(const char* bytes, size_t size) noexcept;
  void finishFirst() noexcept;
  static void onState(pa_stream* stream, void* device);
  static void onData(pa_stream* stream, size_t bytes, void* device);

  WaveInHandler handler_;
  void* context_;
  PulseConnection pulse_;
  pa_stream* stream_ = nullptr;
  bool started_ = false;
  std::atomic<int> error_{0};
  Header* first_ = nullptr;
  Header* last_ = nullptr;
  size_t taken_ = 0;  // bytes of the stream's present fragment that headers have got
  char silence_ = 0;
};

int Device::open(int index, const WaveInFormat& format) {
  if (const int error = pulse_.connect()) return error;
  const PulseConnection::Held held(pulse_);
  PulseConnection::Device source;
  if (const int error = pulse_.find(PulseConnection::Kind::sources, index, source)) return error;
  if (const int error = openStream(source.name.c_str(), format)) return error;
  const int error =
      pulse_.waitFor([this] { return error_ != 0 || pa_stream_get_state(stream_) == PA_STREAM_READY; });
  return error != 0 ? error : error_.load();
}

int Device::openStream(const char* source, const WaveInFormat& format) {
  if (const int error = pulse_.newStream(format.channels, format.sampleRate, format.bitsPerSample, stream_)) {
    return error;
  }
  silence_ = format.bitsPerSample == 8 ? static_cast<char>(0x80) : char{0};
  pa_stream_set_state_callback(stream_, onState, this);
  pa_stream_set_read_callback(stream_, onData, this);
  pa_buffer_attr attributes{};
  attributes.maxlength = static_cast<uint32_t>(-1);
  attributes.fragsize =
      static_cast<uint32_t>(format.bufferFrames * pa_frame_size(pa_stream_get_sample_spec(stream_)));
  // A take comes from one device: one that vanishes ends it rather than being replaced unseen. The stream
  // runs from now on: a source that nobody listens to may work in blocks of seconds, and would begin with
  // one.
  const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);
  const int result = pa_stream_connect_record(stream_, source, &attributes, flags);
  return result < 0 ? pa_context_errno(pulse_.context()) : 0;
}

int Device::queue(WaveInHeader& header) noexcept {
  const PulseConnection::Held held(pulse_);
  if (error_ != 0) return error_;
  auto& own = static_cast<Header&>(header);
  own.rewind();
  if (first_ == nullptr) {
    first_ = &own;
  } else {
    last_->next = &own;
  }
  last_ = &own;
  fill();
  return 0;
}

int Device::start() noexcept {
  const PulseConnection::Held held(pulse_);
  if (error_ != 0) return error_;
  started_ = true;
  fill();
  return 0;
}

int Device::reset() noexcept {
  const PulseConnection::Held held(pulse_);
  if (stream_ != nullptr) pa_stream_set_read_callback(stream_, nullptr, nullptr);
  while (first_ != nullptr) finishFirst();
  return 0;
}

int Device::close() noexcept {
  if (stream_ == nullptr) return 0;
  reset();
  const PulseConnection::Held held(pulse_);
  pa_stream_set_state_callback(stream_, nullptr, nullptr);
  pa_stream_disconnect(stream_);
  pa_stream_unref(stream_);
  stream_ = nullptr;
  return 0;
}

// Hands what the stream has got to the headers that wait.
void Device::fill() noexcept {
  while (started_ && first_ != nullptr && pa_stream_get_state(stream_) == PA_STREAM_READY) {
    const void* fragment = nullptr;
    size_t size = 0;
    if (pa_stream_peek(stream_, &fragment, &size) < 0 || size == 0) return;
    fillFrom(static_cast<const char*>(fragment), size);
    if (taken_ < size) return;
    pa_stream_drop(stream_);
    taken_ = 0;
  }
}

// `bytes` is null where the server has lost some: silence keeps the rest in its place in time.
void Device::fillFrom(const char* bytes, size_t size) noexcept {
  while (first_ != nullptr && taken_ < size) {
    const size_t part = std::min(size - taken_, first_->size - first_->filled);
    char* target = first_->bytes + first_->filled;
    if (bytes != nullptr) {
      std::memcpy(target, bytes + taken_, part);
    } else {
      std::memset(target, silence_, part);
    }
    first_->filled += part;
    taken_ += part;
    if (first_->filled == first_->size) finishFirst();
  }
}

void Device::finishFirst() noexcept {
  Header* filled = first_;
  first_ = first_->next;
  filled->setDone();
  handler_(context_, *filled);
}

void Device::onState(pa_stream* stream, void* device) {
  auto* own = static_cast<Device*>(device);
  if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) {
    const int error = pa_context_errno(own->pulse_.context());
    own->error_ = error != 0 ? error : static_cast<int>(PA_ERR_KILLED);
  }
  own->pulse_.wake();
}

void Device::onData(pa_stream*, size_t, void* device) { static_cast<Device*>(device)->fill(); }

class PulseInput : public WaveInSystem {
 public:
  int countDevices(int& count) override {
    std::vector<PulseConnection::Device> sources;
    const int error = listPulseDevices(PulseConnection::Kind::sources, sources);
    count = static_cast<int>(sources.size());
    return error;
  }

  int capabilities(int index, WaveInCapabilities& capabilities) override {
    PulseConnection::Device source;
    const int error = findPulseDevice(PulseConnection::Kind::sources, index, source);
    if (error == 0) capabilities = {source.description, kAllFormats};
    return error;
  }

  int open(int index, const WaveInFormat& format, WaveInHandler handler, void* context,
           std::unique_ptr<WaveInDevice>& device) override {
    auto opened = std::make_unique<Device>(handler, context);
    const int error = opened->open(index, format);
    if (error == 0) device = std::move(opened);
    return error;
  }

  std::unique_ptr<WaveInHeader> newHeader() override { return std::make_unique<Header>(); }
  std::string errorText(int error) override { return pulseErrorText(error); }
};

}  // namespace

WaveInSystem& nativeWaveIn() {
  static PulseInput input;
  return input;
}

}  // namespace plumetta
