// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/input_capture.h"

#include <cmath>

namespace plumetta {
namespace {

// What a disk may be busy with something else before frames are lost.
constexpr size_t kRingSeconds = 10;

}  // namespace

InputCapture::InputCapture(WaveInSystem& system, PollTimer& timer) : timer_(timer), device_(system, timer) {}

bool InputCapture::start(const InputParameters& parameters) {
  stop();
  parameters_ = parameters;
  floats_.assign(static_cast<size_t>(parameters.bufferFrames) * kInputChannels, 0.0f);
  device_.SetCallback(onBlock, this);
  device_.SetParams(parameters.sampleRate, parameters.bitDepth, floats_.data(), parameters.bufferFrames,
                    kInputBuffers, kInputChannels);
  if (device_.Start(parameters.deviceIndex)) return true;
  stop();
  return false;
}

void InputCapture::stop() {
  device_.Stop();
  floats_ = {};
}

bool InputCapture::beginTake(std::unique_ptr<File> file) {
  auto writer = std::make_unique<TakeWriter>(
      std::move(file), kInputChannels, kRingSeconds * static_cast<size_t>(parameters_.sampleRate), timer_);
  if (!writer->start()) return false;
  const std::lock_guard held(writerMutex_);
  writer_ = std::move(writer);
  framesTaken_ = 0;
  taking_ = true;
  return true;
}

std::error_code InputCapture::endTake() {
  std::unique_ptr<TakeWriter> writer;
  {
    const std::lock_guard held(writerMutex_);
    taking_ = false;
    writer = std::move(writer_);
  }
  return writer != nullptr ? writer->finish() : std::error_code{};
}

void InputCapture::onBlock(void* self, const WaveInBlock* block) noexcept {
  auto* own = static_cast<InputCapture*>(self);
  if (block->frames > own->parameters_.bufferFrames || own->floats_.empty()) return;
  own->raisePeaks(*block);
  if (own->taking_) own->takeBlock(*block);
}

void InputCapture::raisePeaks(const WaveInBlock& block) noexcept {
  const float* sample = floats_.data();
  std::array<float, 16> highest{};
  for (int frame = 0; frame < block.frames; ++frame) {
    for (int c = 0; c < block.channels; ++c) {
      float& peak = highest[static_cast<size_t>(c)];
      peak = std::max(peak, std::fabs(*sample++));
    }
  }
  for (size_t c = 0; c < static_cast<size_t>(block.channels); ++c) {
    float present = peaks_[c];
    while (highest[c] > present && !peaks_[c].compare_exchange_weak(present, highest[c])) {
    }
  }
}

void InputCapture::takeBlock(const WaveInBlock& block) noexcept {
  const std::lock_guard held(writerMutex_);
  if (writer_ != nullptr && writer_->write(floats_.data(), block.frames)) framesTaken_ += block.frames;
}

float InputCapture::takePeak(int channel) noexcept {
  return peaks_[static_cast<size_t>(channel)].exchange(0.0f);
}

std::vector<std::string> waveInDeviceNames(WaveInSystem& system, std::string& error) {
  std::vector<std::string> names;
  int count = 0;
  if (const int code = system.countDevices(count)) {
    error = system.errorText(code);
    return names;
  }
  for (int i = 0; i < count; ++i) {
    WaveInCapabilities capabilities;
    if (const int code = system.capabilities(i, capabilities)) capabilities.name = system.errorText(code);
    names.push_back(capabilities.name);
  }
  return names;
}

}  // namespace plumetta
