// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/output_device.h"

namespace plumetta {
namespace {

std::string withReason(const char* what, const std::string& reason) {
  return reason.empty() ? what : std::string(what) + "\n" + reason;
}

}  // namespace

AudioPlayer& OutputDevice::player() {
  if (!player_) {
    player_ = std::make_unique<AudioPlayer>(PlaybackEngine::callback, &engine_, system_);
    std::array<float*, kMaxOutputChannels> buffers{};
    for (int c = 0; c < kMaxOutputChannels; ++c) buffers[static_cast<size_t>(c)] = player_->channelBuffer(c);
    engine_.setBuffers(buffers);
  }
  return *player_;
}

bool OutputDevice::start(const OutputSettings& settings) {
  AudioPlayer& output = player();
  if (output.running() && !output.deviceLost()) return true;
  output.SelectDriver(settings.asio ? 1 : 0);
  output.SetOutput(settings.deviceId, settings.bufferFrames, settings.sampleRate);
  output.SetBitDepth(settings.bitDepth);
  transport_.controls().outputRate = output.sampleRate();
  if (BlockProcessor* rack = engine_.rack()) rack->setSampleRate(output.sampleRate());
  if (output.Start()) return true;
  prompter_.message(withReason("Unable to start the audio output", output.errorText()));
  return false;
}

void OutputDevice::stop() {
  transport_.stop();
  if (player_) player_->Stop();
}

void OutputDevice::abandon() {
  transport_.stop();
  if (!player_ || player_->Stop()) return;
  engine_.abandonCallback();
  static_cast<void>(player_.release());
}

void OutputDevice::watch() {
  if (!player_ || !player_->deviceLost()) return;
  const std::string reason = player_->errorText();
  stop();
  prompter_.message(withReason("The audio output was lost", reason));
}

double OutputDevice::latency() const {
  constexpr int kBuffers = 4;
  if (!player_) return 0.0;
  int device = 0, frames = 0, rate = 1;
  player_->GetOutput(device, frames, rate);
  return static_cast<double>(kBuffers) * frames / rate;
}

std::vector<std::string> OutputDevice::waveOutNames() {
  CWaveOut& driver = player().waveOut();
  std::vector<std::string> names;
  const int count = driver.GetDeviceCount();
  for (int i = 0; i < count; ++i) names.push_back(driver.GetDeviceName(i));
  return names;
}

std::vector<std::string> OutputDevice::asioNames() {
  CAudioDriver& driver = player().asio();
  std::vector<std::string> names;
  const int count = driver.GetDeviceCount();
  for (int i = 0; i < count; ++i) names.push_back(driver.GetName(i));
  return names;
}

}  // namespace plumetta
