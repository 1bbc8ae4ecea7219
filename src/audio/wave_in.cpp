// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/wave_in.h"

#include <algorithm>
#include <array>
#include <system_error>

namespace plumetta {
namespace {

constexpr std::array kRates{11025, 22050, 44100, 48000, 96000, 192000};
// The re-queue thread ends within a poll; one that hangs in a call of the system is left behind.
constexpr std::chrono::milliseconds kThreadPatience{2000};
constexpr const char* kNoAnswer = "The sound device does not answer.";

struct RateBit {
  int rate;
  uint32_t bit;
};
constexpr RateBit kRateBits[] = {{11025, kStereo16At11025},
                                 {22050, kStereo16At22050},
                                 {44100, kStereo16At44100},
                                 {48000, kStereo16At48000},
                                 {96000, kStereo16At96000}};

void takeIf(bool acceptable, int value, int& field) {
  if (acceptable) field = value;
}

}  // namespace

bool isWaveInRate(int sampleRate) {
  return std::find(kRates.begin(), kRates.end(), sampleRate) != kRates.end();
}

bool isWaveInBitDepth(int bitDepth) { return bitDepth == 8 || bitDepth == 16 || bitDepth == 24; }

CWaveIn::CWaveIn(WaveInSystem& system, PollTimer& timer) : system_(system), timer_(timer) {}

CWaveIn::~CWaveIn() {
  Stop();
  closeAbandoned();
  // What even now can't be closed is never given back: the device might still write to it.
  for (auto& session : abandoned_) new std::shared_ptr(std::move(session));
}

void CWaveIn::SetCallback(WaveInCallback function, void* context) {
  parameters_.callback = function;
  parameters_.context = context;
}

void CWaveIn::SetParams(int sampleRate, int bitDepth, float* floatBuffer, int frames, int bufferCount,
                        int channels) {
  parameters_.floatBuffer = floatBuffer;
  takeIf(isWaveInRate(sampleRate), sampleRate, parameters_.format.sampleRate);
  takeIf(isWaveInBitDepth(bitDepth), bitDepth, parameters_.format.bitsPerSample);
  takeIf(frames > 0, frames, parameters_.format.bufferFrames);
  takeIf(bufferCount >= 2 && bufferCount <= CaptureSession::kMostBuffers, bufferCount,
         parameters_.bufferCount);
  takeIf(channels > 0, channels, parameters_.format.channels);
}

bool CWaveIn::Start(int deviceIndex) {
  Stop();
  if (parameters_.callback == nullptr || parameters_.context == nullptr) return false;
  if (parameters_.floatBuffer == nullptr || parameters_.format.bufferFrames < 1) return false;
  closeAbandoned();
  failure_.clear();
  const auto session = std::make_shared<CaptureSession>(system_, timer_, parameters_);
  int error = session->open(deviceIndex);
  if (error != 0) return fail(error);
  session_ = session;
  error = session->start();
  if (error == 0 && startThread()) return true;
  session->silence();
  session->close();
  if (!session->closed()) abandoned_.push_back(session);
  session_.reset();
  return error == 0 ? false : fail(error);
}

bool CWaveIn::startThread() {
  try {
    thread_ = std::thread([session = session_] { session->run(); });
    return true;
  } catch (const std::system_error& error) {
    failure_ = error.what();
    return false;
  }
}

bool CWaveIn::Stop() {
  if (session_ == nullptr) return false;
  if (GetState() == kLost) failure_ = errorText();
  const std::shared_ptr<CaptureSession> session = std::move(session_);
  SetCallback(nullptr, nullptr);
  session->silence();
  session->requestStop();
  if (!session->waitForEnd(kThreadPatience)) {
    thread_.detach();  // it holds the session as well, and ends as soon as the system lets it go
    failure_ = kNoAnswer;
    return true;
  }
  thread_.join();
  session->close();
  if (!session->closed()) abandoned_.push_back(session);
  return true;
}

void CWaveIn::closeAbandoned() {
  std::erase_if(abandoned_, [](const auto& session) {
    session->close();
    return session->closed();
  });
}

int32_t CWaveIn::GetState() const noexcept {
  if (session_ == nullptr) return kStopped;
  return session_->error() == 0 ? kRunning : kLost;
}

int CWaveIn::GetDeviceCount() {
  int count = 0;
  const int error = system_.countDevices(count);
  if (error == 0) return count;
  fail(error);
  return 0;
}

std::string CWaveIn::GetDeviceName(int deviceIndex) {
  WaveInCapabilities capabilities;
  if (const int error = system_.capabilities(deviceIndex, capabilities)) fail(error);
  return capabilities.name;
}

bool CWaveIn::IsRateSupported(int deviceIndex, int rate) {
  WaveInCapabilities capabilities;
  if (system_.capabilities(deviceIndex, capabilities) != 0) return false;
  return std::any_of(std::begin(kRateBits), std::end(kRateBits), [&](const RateBit& each) {
    return each.rate == rate && (capabilities.formats & each.bit) != 0;
  });
}

std::string CWaveIn::errorText() const {
  if (session_ == nullptr || session_->error() == 0) return failure_;
  return session_->error() == kDeviceStalled ? kNoAnswer : system_.errorText(session_->error());
}

bool CWaveIn::fail(int error) {
  failure_ = system_.errorText(error);
  return false;
}

}  // namespace plumetta
