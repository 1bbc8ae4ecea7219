// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/asio_session.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iterator>
#include <thread>
#include <utility>

#include "audio/asio_sample_type.h"

namespace plumetta {
namespace {

constexpr int kMostChannels = 32;               // of either direction that get buffers
constexpr int32_t kMostBufferFrames = 1 << 22;  // beyond this a driver counts its buffers wrong
constexpr AsioSampleRate kUsualRate = 44100;    // in place of one that the driver refuses
constexpr size_t kNameBytes = 32, kErrorBytes = 124;
// More than a driver may write, for the one that doesn't count either.
constexpr size_t kTextRoom = 1024;

template <size_t size>
std::string textIn(const char (&field)[size], size_t most = size) {
  return {field, std::find(field, field + std::min(size, most), '\0')};
}

}  // namespace

bool AsioSession::load() {
  loadError_ = callbacks_.get() != nullptr ? system_.create(classId_, driver_) : kAsioNotPresent;
  return driver_ != nullptr;
}

bool AsioSession::init() {
  if (driver_ == nullptr) return false;
  const bool ready = driver_->init(system_.windowHandle()) != 0;
  char text[kTextRoom] = "";
  driver_->getErrorMessage(text);
  info_.errorMessage = textIn(text, kErrorBytes);
  if (!ready) return false;
  std::fill(std::begin(text), std::end(text), '\0');
  driver_->getDriverName(text);
  info_.name = textIn(text, kNameBytes);
  info_.version = driver_->getDriverVersion();
  return true;
}

bool AsioSession::readChannelCounts() {
  return driver_->getChannels(&info_.inputs, &info_.outputs) == kAsioOk;
}

bool AsioSession::staticInit() {
  if (!readChannelCounts()) return false;
  if (driver_->getBufferSize(&info_.minimumFrames, &info_.maximumFrames, &info_.preferredFrames,
                             &info_.granularity) != kAsioOk) {
    return false;
  }
  chooseSampleRate();
  info_.takesOutputReady = driver_->outputReady() == kAsioOk;
  return info_.preferredFrames > 0 && info_.preferredFrames <= kMostBufferFrames;
}

void AsioSession::chooseSampleRate() {
  info_.sampleRate = parameters_.sampleRate;
  if (driver_->canSampleRate(info_.sampleRate) != kAsioOk) info_.sampleRate = kUsualRate;
  if (driver_->setSampleRate(info_.sampleRate) == kAsioOk) return;
  // A clock from outside can't be set; then what it runs at is what counts.
  AsioSampleRate present = 0;
  if (driver_->getSampleRate(&present) == kAsioOk && present >= 1 && present <= 1e6)
    info_.sampleRate = present;
}

bool AsioSession::createBuffers() {
  buffers_.clear();
  for (const AsioBool isInput : {1, 0}) {
    const int count = std::min(isInput != 0 ? info_.inputs : info_.outputs, kMostChannels);
    for (int channel = 0; channel < count; ++channel) buffers_.push_back({isInput, channel, {}});
  }
  const AsioError error = driver_->createBuffers(buffers_.data(), static_cast<int32_t>(buffers_.size()),
                                                 info_.preferredFrames, callbacks_.get());
  buffersMade_ = error == kAsioOk;
  return buffersMade_ && readChannels() &&
         driver_->getLatencies(&info_.inputLatency, &info_.outputLatency) == kAsioOk;
}

bool AsioSession::readChannels() {
  info_.channels.clear();
  for (const AsioBufferInfo& buffer : buffers_) {
    AsioChannelInfo& channel = info_.channels.emplace_back();
    channel.channel = buffer.channel;
    channel.isInput = buffer.isInput;
    if (driver_->getChannelInfo(&channel) != kAsioOk) return false;
    channel.name[sizeof channel.name - 1] = '\0';
  }
  return true;
}

bool AsioSession::start() {
  // Before the driver runs, for some ask for their first buffer at once.
  callbacks_.connect(*this);
  started_ = true;
  const bool runs = driver_->start() == kAsioOk;
  if (!runs) disconnect();
  return runs;
}

bool AsioSession::showControlPanel() { return driver_->controlPanel() == kAsioOk; }

bool AsioSession::readChannelName(int outputChannel) {
  AsioChannelInfo channel;
  channel.channel = outputChannel;
  if (driver_->getChannelInfo(&channel) != kAsioOk) return false;
  channelName_ = textIn(channel.name);
  return true;
}

std::vector<std::function<void()>> AsioSession::lastActs(const std::shared_ptr<AsioSession>& session) {
  return {[session] { session->stop(); }, [session] { session->disposeBuffers(); },
          [session] { session->release(); }};
}

void AsioSession::stop() {
  // Until it has stopped it is given sound: half a buffer of what was would be heard again.
  if (std::exchange(started_, false)) driver_->stop();
}

void AsioSession::disposeBuffers() {
  disconnect();
  // A buffer switch that is still under way writes into them.
  while (!callbacks_.quiet()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  if (std::exchange(buffersMade_, false)) driver_->disposeBuffers();
}

void AsioSession::release() {
  if (driver_ != nullptr) std::exchange(driver_, nullptr)->Release();
}

// ---- Audio thread ---------------------------------------------------------------------------------------

void AsioSession::fillBuffers(int half) noexcept {
  for (int offset = 0; offset < info_.preferredFrames;) offset += fillTurn(half, offset);
  ++switches_;
  if (!info_.takesOutputReady) return;
  try {
    driver_->outputReady();
  } catch (...) {  // it has its sound all the same
  }
}

// Fills what the callback makes at a time, behind the `offset` frames that are filled already; how many
// frames that were.
int AsioSession::fillTurn(int half, int offset) noexcept {
  const int rest = info_.preferredFrames - offset;
  int frames = std::min(rest, kMaxOutputFrames);
  int channelCount = std::clamp(info_.outputs, 0, kMaxOutputChannels);
  parameters_.callback(parameters_.context, channels_.data(), &frames, &channelCount);
  if (frames <= 0) channelCount = 0;  // nothing has come, and nothing will
  frames = frames <= 0 ? rest : std::min(frames, rest);
  writeOutputs(half, offset, frames, std::min(channelCount, kMaxOutputChannels));
  return frames;
}

void AsioSession::writeOutputs(int half, int offset, int frames, int channelCount) noexcept {
  for (size_t i = 0; i < buffers_.size(); ++i) {
    const AsioBufferInfo& buffer = buffers_[i];
    void* memory = buffer.buffers[half];
    if (buffer.isInput != 0 || memory == nullptr) continue;
    const float* samples =
        buffer.channel < channelCount ? channels_[static_cast<size_t>(buffer.channel)] : nullptr;
    writeAsioSamples(info_.channels[i].sampleType, samples, offset, frames, memory);
  }
}

}  // namespace plumetta
