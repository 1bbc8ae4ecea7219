// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/wave_out.h"

#include <algorithm>
#include <array>
#include <system_error>

namespace plumetta {
namespace {

constexpr std::array kRates{11025, 22050, 44100, 48000, 88200, 96000, 192000};
constexpr const char* kChannelNames[] = {"MME Left", "MME Right"};
// A pass of the pull thread takes a few milliseconds; one that hangs in a call of the system is left behind.
constexpr std::chrono::milliseconds kThreadPatience{2000};
constexpr const char* kNoAnswer = "The sound device does not answer.";

void takeIf(bool acceptable, int value, int& field) {
  if (acceptable) field = value;
}

}  // namespace

bool isWaveOutRate(int sampleRate) {
  return std::find(kRates.begin(), kRates.end(), sampleRate) != kRates.end();
}

CWaveOut::CWaveOut(WaveOutSystem& system, PollTimer& timer) : system_(system), timer_(timer) {
  for (int i = 0; i < kNames && i < GetDeviceCount(); ++i) setName(i, GetDeviceName(i));
}

CWaveOut::~CWaveOut() {
  Stop();
  closeAbandoned();
  // What even now can't be closed is never given back: the device might still read it.
  for (auto& session : abandoned_) new std::shared_ptr(std::move(session));
}

bool CWaveOut::SetParams(int sampleRate, int bufferFrames, int bufferCount, int pollMs, int deviceIndex,
                         int bitDepth) {
  takeIf(isWaveOutRate(sampleRate), sampleRate, sampleRate_);
  takeIf(bufferFrames >= 1 && bufferFrames <= 32767, bufferFrames, bufferFrames_);
  takeIf(bufferCount >= 2 && bufferCount <= 8, bufferCount, bufferCount_);
  takeIf(pollMs >= 1 && pollMs <= 199, pollMs, pollMs_);
  takeIf(deviceIndex >= 0, deviceIndex, deviceIndex_);
  takeIf(bitDepth == 8 || bitDepth == 16 || bitDepth == 24, bitDepth, bitDepth_);
  parametersSet_ = true;
  return true;
}

int CWaveOut::GetDeviceCount() {
  int count = 0;
  const int error = system_.countDevices(count);
  if (error == 0) return count;
  fail(error);
  return 0;
}

std::string CWaveOut::GetDeviceName(int deviceIndex) {
  std::string name;
  if (const int error = system_.deviceName(deviceIndex, name)) fail(error);
  return name;
}

bool CWaveOut::GetChannelName(int channel, std::string& name) {
  if (channel == 0 || channel == 1) name = kChannelNames[channel];
  return true;
}

bool CWaveOut::Start() {
  if (running_) return true;
  if (callback_ == nullptr || !callbackSet_ || !parametersSet_) return false;
  Stop();  // a callback set in mid-play has left its thread behind
  closeAbandoned();
  failure_.clear();
  PullSession::Parameters parameters;
  parameters.callback = callback_;
  parameters.context = context_;
  parameters.deviceIndex = deviceIndex_;
  parameters.format = {channelCount_, sampleRate_, bitDepth_, bufferFrames_, bufferCount_};
  parameters.poll = std::chrono::milliseconds{pollMs_};
  session_ = std::make_shared<PullSession>(system_, timer_, parameters);
  if (const int error = session_->open()) {
    session_.reset();
    return fail(error);
  }
  running_ = startThread();
  return running_;
}

bool CWaveOut::startThread() {
  try {
    thread_ = std::thread([session = session_] { session->run(); });
    return true;
  } catch (const std::system_error& error) {
    session_->close();
    session_.reset();
    failure_ = error.what();
    return false;
  }
}

bool CWaveOut::Stop() {
  if (session_ == nullptr) return true;
  running_ = false;
  const std::shared_ptr<PullSession> session = std::move(session_);
  session->requestStop();
  if (!session->waitForEnd(kThreadPatience)) {
    thread_.detach();  // it holds the session as well, and ends as soon as the system lets it go
    failure_ = kNoAnswer;
    return false;
  }
  thread_.join();
  const int error = session->close();
  if (!session->closed()) abandoned_.push_back(session);
  return error == 0 || fail(error);
}

void CWaveOut::closeAbandoned() {
  std::erase_if(abandoned_, [](const auto& session) {
    session->close();
    return session->closed();
  });
}

bool CWaveOut::deviceLost() const noexcept { return session_ != nullptr && session_->error() != 0; }

std::string CWaveOut::errorText() const {
  if (!deviceLost()) return failure_;
  return session_->error() == kDeviceStalled ? kNoAnswer : system_.errorText(session_->error());
}

int CWaveOut::underruns() const noexcept { return session_ != nullptr ? session_->underruns() : 0; }

bool CWaveOut::fail(int error) {
  failure_ = system_.errorText(error);
  return false;
}

}  // namespace plumetta
