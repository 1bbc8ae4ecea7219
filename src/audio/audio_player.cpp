// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/audio_player.h"

namespace plumetta {
namespace {

int fittingBuffer(int frames) {
  return frames < 1 || frames > AudioPlayer::kBufferFrames ? AudioPlayer::kBufferFrames : frames;
}

}  // namespace

AudioPlayer::AudioPlayer(AudioCallback callback, void* context, WaveOutSystem& system, AsioSystem& asio)
    : waveOut_(system), asio_(asio), callback_(callback), context_(context) {
  for (auto& buffer : buffers_) buffer.resize(kBufferFrames);
}

bool AudioPlayer::Start() {
  if (deviceLost()) Stop();
  if (running_) return true;
  if (callback_ == nullptr) return false;
  active_->SetCallback(callback_, context_);
  handOver(*active_);
  // A failed start leaves the player stopped, so that the next one tries again.
  running_ = active_->Start();
  return running_;
}

void AudioPlayer::handOver(CAudioDriver& driver) {
  driver.SetParams(sampleRate_, bufferFrames_, bufferCount_, pollMs_, deviceIndex_, bitDepth_);
}

int AudioPlayer::channelCount() {
  if (!running_) handOver(*active_);
  return active_->GetChannelCount();
}

std::string AudioPlayer::asioReport(int driverIndex) {
  handOver(asio_);
  return asio_.testReport(driverIndex);
}

bool AudioPlayer::Stop() {
  running_ = false;
  return active_->Stop();
}

void AudioPlayer::SelectDriver(int useAsio) {
  CAudioDriver* chosen = useAsio == 1 ? static_cast<CAudioDriver*>(&asio_) : &waveOut_;
  if (chosen == active_) return;
  Stop();
  active_ = chosen;
}

void AudioPlayer::SetBitDepth(int bits) {
  if (bits == 8 || bits == 16) bitDepth_ = bits;
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

}  // namespace plumetta
