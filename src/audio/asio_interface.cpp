// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/asio_interface.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <system_error>

#include "audio/asio_report.h"

namespace plumetta {
namespace {

using std::chrono::milliseconds;

constexpr std::array kRates{22050, 44100, 48000, 88200, 96000};
constexpr const char* kNoAnswer = "The ASIO driver does not answer.";
// What each call of a driver may take.
constexpr milliseconds kPatience{2000};
// A driver asks for a buffer every few milliseconds; the first may take it longer.
constexpr milliseconds kStallLimit{1500};
constexpr milliseconds kFirstBufferLimit{4000};
// Time in which nobody looked, or the whole computer slept, is not held against it.
constexpr milliseconds kLongestLook{250};

void takeIf(bool acceptable, int value, int& field) {
  if (acceptable) field = value;
}

std::string loadFailure(const std::string& driver, int32_t error) {
  char code[16];
  std::snprintf(code, sizeof code, "%08X", static_cast<unsigned>(error));
  return "The ASIO driver " + driver + " can't be loaded (error " + code + ").";
}

}  // namespace

const CASIOInterface::NamedStep CASIOInterface::kSteps[] = {
    {&AsioSession::init, "Unable to init"},
    {&AsioSession::staticInit, "Unable to static init"},
    {&AsioSession::createBuffers, "Unable to create buffer"},
    {&AsioSession::start, "Unable to start"}};

CASIOInterface::CASIOInterface(AsioSystem& system, PollTimer& timer)
    : system_(system), timer_(timer), drivers_(listAsioDrivers(system)) {
  for (int i = 0; i < kNames && i < GetDeviceCount(); ++i) setName(i, drivers_[static_cast<size_t>(i)].name);
}

CASIOInterface::~CASIOInterface() { unload(); }

bool CASIOInterface::SetParams(int sampleRate, int, int, int, int deviceIndex, int bitDepth) {
  takeIf(std::find(kRates.begin(), kRates.end(), sampleRate) != kRates.end(), sampleRate, sampleRate_);
  takeIf(deviceIndex >= 0, deviceIndex, deviceIndex_);
  takeIf(bitDepth == 8 || bitDepth == 16 || bitDepth == 24, bitDepth, bitDepth_);
  parametersSet_ = true;
  return true;
}

std::vector<std::string> CASIOInterface::driverNames() const {
  std::vector<std::string> names;
  for (const AsioDriverEntry& driver : drivers_) names.push_back(driver.name);
  return names;
}

// ---- Playing --------------------------------------------------------------------------------------------

bool CASIOInterface::Start() {
  if (running_) return true;
  if (callback_ == nullptr || !callbackSet_ || !parametersSet_) return false;
  if (!load(deviceIndex_)) return false;
  running_ = true;
  started_ = runSteps(static_cast<int>(std::size(kSteps)));
  if (!started_) session_->disconnect();
  watch_ = {0, timer_.now(), milliseconds{0}};
  return true;
}

bool CASIOInterface::Stop() {
  running_ = false;
  return unload();
}

bool CASIOInterface::deviceLost() const noexcept {
  if (!running_ || !ready()) return false;
  const milliseconds now = timer_.now();
  const int64_t switches = session_->switches();
  watch_.stalled = switches != watch_.switches ? milliseconds{0}
                                               : watch_.stalled + std::min(now - watch_.looked, kLongestLook);
  watch_.switches = switches;
  watch_.looked = now;
  const double bufferTime = 1000.0 * info_.preferredFrames / std::max(info_.sampleRate, 1.0);
  return watch_.stalled >
         (switches > 0 ? kStallLimit : kFirstBufferLimit) + milliseconds{static_cast<int64_t>(bufferTime)};
}

std::string CASIOInterface::errorText() const { return deviceLost() ? kNoAnswer : failure_; }

int CASIOInterface::playedRate() const {
  return ready() ? static_cast<int>(std::lround(info_.sampleRate)) : sampleRate_;
}

int CASIOInterface::latencyFrames() const { return ready() ? std::max(info_.outputLatency, 0) : 0; }

// ---- Questions ------------------------------------------------------------------------------------------

int CASIOInterface::GetChannelCount() {
  if (ready()) return info_.outputs;
  const bool asked = load(deviceIndex_) && runSteps(1) && run(&AsioSession::readChannelCounts);
  const int count = asked ? info_.outputs : 0;
  unload();
  return count;
}

bool CASIOInterface::GetChannelName(int channel, std::string& name) {
  const bool loaded = ready() || (load(deviceIndex_) && runSteps(1));
  const std::shared_ptr<AsioSession> session = session_;
  const bool known =
      loaded && thread_->call([session, channel] { return session->readChannelName(channel); }, patience());
  if (known) name = session->channelName();
  if (!ready()) unload();
  return known;
}

bool CASIOInterface::OpenControlPanel(int driverIndex, const std::function<bool()>& goOn) {
  Stop();
  if (!load(driverIndex)) return false;
  // A driver that can't be initialised may have its reason set right in its panel.
  run(&AsioSession::init);
  const std::shared_ptr<AsioSession> session = session_;
  const bool shown = thread_->call([session] { return session->showControlPanel(); }, goOn);
  unload();
  return shown;
}

std::string CASIOInterface::testReport(int driverIndex) {
  Stop();
  // All but the start.
  if (load(driverIndex)) runSteps(static_cast<int>(std::size(kSteps)) - 1);
  unload();
  return asioReport(info_);
}

// ---- The loaded driver ----------------------------------------------------------------------------------

bool CASIOInterface::load(int driverIndex) {
  unload();
  failure_.clear();
  info_ = {};
  if (driverIndex < 0 || driverIndex >= GetDeviceCount()) {
    return fail("There is no ASIO driver " + std::to_string(driverIndex) + ".");
  }
  const AsioDriverEntry& driver = drivers_[static_cast<size_t>(driverIndex)];
  session_ = std::make_shared<AsioSession>(system_, driver.classId,
                                           AsioSession::Parameters{callback_, context_, sampleRate_});
  try {
    thread_ = std::make_unique<AsioThread>(system_, AsioSession::lastActs(session_));
  } catch (const std::system_error& error) {
    session_.reset();
    return fail(error.what());
  }
  if (run(&AsioSession::load)) return true;
  const std::string reason = thread_->givenUp() ? kNoAnswer : loadFailure(driver.name, session_->loadError());
  unload();
  return fail(reason);
}

// What a driver that was given up may still be writing is not looked at.
bool CASIOInterface::run(Step step) {
  const bool good =
      thread_->call([session = session_, step] { return (session.get()->*step)(); }, patience());
  if (!thread_->givenUp()) info_ = session_->info();
  return good;
}

bool CASIOInterface::runSteps(int count) {
  for (int i = 0; i < count; ++i) {
    if (!run(kSteps[i].step)) return fail(kSteps[i].failure);
  }
  return true;
}

bool CASIOInterface::unload() {
  if (session_ == nullptr) return true;
  started_ = false;
  const bool ended = thread_->end(patience());
  session_->disconnect();  // a driver that was given up may go on asking
  thread_.reset();
  session_.reset();
  return ended || (failure_.empty() && fail(kNoAnswer));
}

// Says yes for as long as a call that begins now may take.
std::function<bool()> CASIOInterface::patience() const {
  return [&timer = timer_, end = timer_.now() + kPatience] { return timer.now() < end; };
}

bool CASIOInterface::fail(const std::string& text) {
  failure_ = text;
  return false;
}

}  // namespace plumetta
