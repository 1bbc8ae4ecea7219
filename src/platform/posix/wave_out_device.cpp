// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/wave_out_device.h"

#include <algorithm>
#include <atomic>

#include "platform/posix/pulse_connection.h"

namespace plumetta {
namespace {

class Header : public WaveOutHeader {
 public:
  bool done() const noexcept override { return done_.load(std::memory_order_acquire); }
  void setDone() noexcept override { done_.store(true, std::memory_order_release); }
  void assign(const void* data, uint32_t length) noexcept override {
    bytes = static_cast<const char*>(data);
    size = length;
    sent = 0;
    next = nullptr;
    done_.store(false, std::memory_order_relaxed);
  }

  const char* bytes = nullptr;
  size_t size = 0;
  size_t sent = 0;
  uint64_t end = 0;  // of its bytes in all that the stream was given
  Header* next = nullptr;

 private:
  std::atomic<bool> done_{true};
};

// A stream of the sound server, with the headers that it has not played yet. The bytes go on to the server as
// far as its own buffer takes them. What has been played is what the server asks to have replaced.
class Device : public WaveOutDevice {
 public:
  ~Device() override { close(); }

  int open(int index, const WaveOutFormat& format);

  // The server needs no preparing, but a device that is gone says so here already.
  int prepare(WaveOutHeader&) noexcept override {
    const PulseConnection::Held held(pulse_);
    return error_;
  }
  int unprepare(WaveOutHeader&) noexcept override { return 0; }
  int write(WaveOutHeader& header) noexcept override;
  int reset() noexcept override;
  int close() noexcept override;

 private:
  int openStream(const char* sink, const WaveOutFormat& format);
  int sendSilence(size_t bytes);
  void sendMore() noexcept;
  void retireUpTo(uint64_t position) noexcept;
  void lose(int error) noexcept;
  static void onState(pa_stream* stream, void* device);
  static void onRequest(pa_stream* stream, size_t bytes, void* device);
  static void onUnderflow(pa_stream* stream, void* device);

  PulseConnection pulse_;
  pa_stream* stream_ = nullptr;
  int error_ = 0;             // why the stream has ended
  uint32_t wholeLength_ = 0;  // bytes of all buffers together
  Header* first_ = nullptr;
  Header* last_ = nullptr;
  uint64_t queued_ = 0;  // bytes in all headers so far
  uint64_t sent_ = 0;
};

int Device::open(int index, const WaveOutFormat& format) {
  if (const int error = pulse_.connect()) return error;
  const PulseConnection::Held held(pulse_);
  PulseConnection::Device sink;
  if (const int error = pulse_.find(PulseConnection::Kind::sinks, index, sink)) return error;
  if (const int error = openStream(sink.name.c_str(), format)) return error;
  const int error =
      pulse_.waitFor([this] { return error_ != 0 || pa_stream_get_state(stream_) == PA_STREAM_READY; });
  if (error != 0 || error_ != 0) return error != 0 ? error : error_;
  // The server takes the stream's own buffer to be shorter by what the device works ahead.
  const uint32_t own = pa_stream_get_buffer_attr(stream_)->tlength;
  return own < wholeLength_ ? sendSilence(wholeLength_ - own) : 0;
}

// A stream that begins makes the server render anew what it had already rendered as silence. Whoever listens
// to the device's monitor has heard that silence and would miss as much of the sound; so silence goes first.
int Device::sendSilence(size_t bytes) {
  const pa_sample_spec* spec = pa_stream_get_sample_spec(stream_);
  const std::vector<char> silence(bytes - bytes % pa_frame_size(spec),
                                  spec->format == PA_SAMPLE_U8 ? '\x80' : '\0');
  if (pa_stream_write(stream_, silence.data(), silence.size(), nullptr, 0, PA_SEEK_RELATIVE) < 0) {
    return pa_context_errno(pulse_.context());
  }
  queued_ = sent_ = silence.size();
  return 0;
}

int Device::openStream(const char* sink, const WaveOutFormat& format) {
  if (const int error = pulse_.newStream(format.channels, format.sampleRate, format.bitsPerSample, stream_)) {
    return error;
  }
  pa_stream_set_state_callback(stream_, onState, this);
  pa_stream_set_write_callback(stream_, onRequest, this);
  pa_stream_set_underflow_callback(stream_, onUnderflow, this);
  // All of the way to the loudspeaker is to hold what the buffers hold and no more. It starts with the first
  // buffer, and every half buffer played is reported.
  const auto buffer =
      static_cast<uint32_t>(format.bufferFrames * pa_frame_size(pa_stream_get_sample_spec(stream_)));
  pa_buffer_attr attributes{};
  attributes.maxlength = static_cast<uint32_t>(-1);
  wholeLength_ = buffer * static_cast<uint32_t>(format.bufferCount);
  attributes.tlength = wholeLength_;
  attributes.prebuf = buffer;
  attributes.minreq = std::max<uint32_t>(buffer / 2, 1);
  const int result =
      pa_stream_connect_playback(stream_, sink, &attributes, PA_STREAM_ADJUST_LATENCY, nullptr, nullptr);
  return result < 0 ? pa_context_errno(pulse_.context()) : 0;
}

int Device::write(WaveOutHeader& header) noexcept {
  const PulseConnection::Held held(pulse_);
  if (error_ != 0) return error_;
  auto& own = static_cast<Header&>(header);
  queued_ += own.size;
  own.end = queued_;
  if (first_ == nullptr) {
    first_ = &own;
  } else {
    last_->next = &own;
  }
  last_ = &own;
  sendMore();
  return error_;
}

int Device::reset() noexcept {
  const PulseConnection::Held held(pulse_);
  retireUpTo(queued_);
  if (error_ != 0) return 0;
  pa_operation* flush = pa_stream_flush(stream_, nullptr, nullptr);
  if (flush == nullptr) return pa_context_errno(pulse_.context());
  pa_operation_unref(flush);
  return 0;
}

int Device::close() noexcept {
  if (stream_ == nullptr) return 0;
  const PulseConnection::Held held(pulse_);
  retireUpTo(queued_);
  pa_stream_set_state_callback(stream_, nullptr, nullptr);
  pa_stream_set_write_callback(stream_, nullptr, nullptr);
  pa_stream_set_underflow_callback(stream_, nullptr, nullptr);
  pa_stream_disconnect(stream_);
  pa_stream_unref(stream_);
  stream_ = nullptr;
  return 0;
}

void Device::sendMore() noexcept {
  size_t room = pa_stream_writable_size(stream_);
  if (room == static_cast<size_t>(-1)) return lose(pa_context_errno(pulse_.context()));
  room -= room % pa_frame_size(pa_stream_get_sample_spec(stream_));
  for (Header* header = first_; header != nullptr && room > 0; header = header->next) {
    const size_t bytes = std::min(room, header->size - header->sent);
    if (bytes == 0) continue;
    if (pa_stream_write(stream_, header->bytes + header->sent, bytes, nullptr, 0, PA_SEEK_RELATIVE) < 0) {
      return lose(pa_context_errno(pulse_.context()));
    }
    header->sent += bytes;
    sent_ += bytes;
    room -= bytes;
  }
  const pa_buffer_attr* attributes = pa_stream_get_buffer_attr(stream_);
  const size_t atServer = attributes->tlength - std::min<size_t>(room, attributes->tlength);
  retireUpTo(sent_ - std::min<uint64_t>(sent_, atServer));
}

void Device::retireUpTo(uint64_t position) noexcept {
  while (first_ != nullptr && first_->end <= position) {
    Header* played = first_;
    first_ = first_->next;
    played->setDone();  // from here on it may already be filled again
  }
}

void Device::lose(int error) noexcept {
  error_ = error != 0 ? error : static_cast<int>(PA_ERR_KILLED);
  retireUpTo(queued_);
}

void Device::onState(pa_stream* stream, void* device) {
  auto* own = static_cast<Device*>(device);
  if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) own->lose(pa_context_errno(own->pulse_.context()));
  own->pulse_.wake();
}

void Device::onRequest(pa_stream*, size_t, void* device) { static_cast<Device*>(device)->sendMore(); }

// The server leaves a remainder too small to ask for; once it has run dry that has been played as well.
void Device::onUnderflow(pa_stream* stream, void* device) {
  const int64_t position = pa_stream_get_underflow_index(stream);
  if (position > 0) static_cast<Device*>(device)->retireUpTo(static_cast<uint64_t>(position));
}

class PulseOutput : public WaveOutSystem {
 public:
  int countDevices(int& count) override {
    std::vector<PulseConnection::Device> sinks;
    const int error = listPulseDevices(PulseConnection::Kind::sinks, sinks);
    count = static_cast<int>(sinks.size());
    return error;
  }

  int deviceName(int index, std::string& name) override {
    PulseConnection::Device sink;
    const int error = findPulseDevice(PulseConnection::Kind::sinks, index, sink);
    if (error == 0) name = sink.description;
    return error;
  }

  int open(int index, const WaveOutFormat& format, std::unique_ptr<WaveOutDevice>& device) override {
    auto opened = std::make_unique<Device>();
    const int error = opened->open(index, format);
    if (error == 0) device = std::move(opened);
    return error;
  }

  std::unique_ptr<WaveOutHeader> newHeader() override { return std::make_unique<Header>(); }
  std::string errorText(int error) override { return pulseErrorText(error); }
};

}  // namespace

WaveOutSystem& nativeWaveOut() {
  static PulseOutput output;
  return output;
}

}  // namespace plumetta
