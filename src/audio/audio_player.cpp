// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/audio_player.h"

#include "platform/private_profile.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "General";
constexpr const char* kDeviceKey = "AudioOutId";
constexpr const char* kRateKey = "AudioOutSampleRate";
constexpr const char* kBitDepthKey = "AudioOutBitDepth";
constexpr const char* kBufferKey = "AudioOutBufferSize(sample)";

int fittingBuffer(int frames) {
  return frames < 1 || frames > AudioPlayer::kBufferFrames ? AudioPlayer::kBufferFrames : frames;
}

}  // namespace

AudioPlayer::AudioPlayer(AudioCallback callback, void* context, WaveOutSystem& system,
                         std::unique_ptr<CAudioDriver> asio)
    : waveOut_(system), asio_(std::move(asio)), callback_(callback), context_(context) {
  for (auto& buffer : buffers_) buffer.resize(kBufferFrames);
}

bool AudioPlayer::Start() {
  if (deviceLost()) Stop();
  if (running_) return true;
  if (callback_ == nullptr) return false;
  active_->SetCallback(callback_, context_);
  active_->SetParams(sampleRate_, bufferFrames_, bufferCount_, pollMs_, deviceIndex_, bitDepth_);
  // A failed start leaves the player stopped, so that the next one tries again.
  running_ = active_->Start();
  return running_;
}

bool AudioPlayer::Stop() {
  running_ = false;
  return active_->Stop();
}

void AudioPlayer::SelectDriver(int useAsio) {
  CAudioDriver* chosen = useAsio == 1 ? asio_.get() : &waveOut_;
  if (chosen == active_) return;
  Stop();
  active_ = chosen;
}

void AudioPlayer::SetOutput(int deviceIndex, int bufferFrames, int sampleRate) {
  deviceIndex_ = deviceIndex;
  bufferFrames_ = fittingBuffer(bufferFrames);
  if (isWaveOutRate(sampleRate)) sampleRate_ = sampleRate;
}

void AudioPlayer::GetOutput(int& deviceIndex, int& bufferFrames, int& sampleRate) const {
  deviceIndex = deviceIndex_;
  bufferFrames = bufferFrames_;
  sampleRate = sampleRate_;
}

void AudioPlayer::LoadSettings(const std::string& file) {
  const auto read = [&](const char* key, int present) {
    return readProfileInt(file, kSection, key, present);
  };
  SetOutput(read(kDeviceKey, deviceIndex_), read(kBufferKey, bufferFrames_), read(kRateKey, sampleRate_));
  const int bitDepth = read(kBitDepthKey, bitDepth_);
  // 24 bits carry no usable signal, so they are never brought back.
  if (bitDepth == 8 || bitDepth == 16) bitDepth_ = bitDepth;
}

bool AudioPlayer::SaveSettings(const std::string& file) const {
  const auto write = [&](const char* key, int value) {
    return writeProfileString(file, kSection, key, std::to_string(value));
  };
  return write(kDeviceKey, deviceIndex_) && write(kRateKey, sampleRate_) && write(kBitDepthKey, bitDepth_) &&
         write(kBufferKey, bufferFrames_);
}

}  // namespace plumetta
