// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/output_device.h"

#include "app/with_reason.h"
#include "formats/text_export.h"

namespace plumetta {
AudioPlayer& OutputDevice::player() {
  if (!player_) {
    player_ = std::make_unique<AudioPlayer>(PlaybackEngine::callback, &engine_, waveOut_, asio_);
    std::array<float*, kMaxOutputChannels> buffers{};
    for (int c = 0; c < kMaxOutputChannels; ++c) buffers[static_cast<size_t>(c)] = player_->channelBuffer(c);
    engine_.setBuffers(buffers);
  }
  return *player_;
}

void OutputDevice::choose(const OutputSettings& settings) {
  AudioPlayer& output = player();
  output.SelectDriver(settings.asio ? 1 : 0);
  output.SetOutput(settings.deviceId, settings.bufferFrames, settings.sampleRate);
  output.SetBitDepth(settings.bitDepth);
}

// A driver may play at another rate than it was asked for.
void OutputDevice::hearPlayedRate(int hz) {
  transport_.controls().outputRate = hz;
  BlockProcessor* rack = engine_.rack();
  if (rack == nullptr) return;
  engine_.setRack(nullptr);  // plug-ins hear of rates between two blocks only
  rack->setSampleRate(hz);
  engine_.setRack(rack);
}

bool OutputDevice::start(const OutputSettings& settings) {
  AudioPlayer& output = player();
  if (output.running() && !output.deviceLost()) return true;
  choose(settings);
  transport_.controls().outputRate = output.sampleRate();
  BlockProcessor* rack = engine_.rack();
  if (rack != nullptr) rack->setSampleRate(output.sampleRate());
  const bool started = output.Start();
  const std::string reason = output.errorText();
  hearPlayedRate(output.playedRate());
  if (started && reason.empty()) return true;
  // A driver that has started and yet won't sound has said all there is to say.
  prompter_.message(started ? reason : withReason("Unable to start the audio output", reason));
  output.Stop();
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
  if (!player_) return 0.0;
  const BlockProcessor* rack = engine_.rack();
  const bool through = rack != nullptr && transport_.controls().rackEnabled;
  const double late = through ? static_cast<double>(rack->latencyFrames()) : 0.0;
  return queuedSeconds() + late / player_->playedRate();
}

std::vector<std::string> OutputDevice::waveOutNames() {
  CWaveOut& driver = player().waveOut();
  std::vector<std::string> names;
  const int count = driver.GetDeviceCount();
  for (int i = 0; i < count; ++i) names.push_back(driver.GetDeviceName(i));
  return names;
}

std::vector<std::string> OutputDevice::asioNames() { return player().asio().driverNames(); }

int OutputDevice::channelCount(const OutputSettings& settings) {
  if (!running()) choose(settings);
  return player().channelCount();
}

// A panel stays open for as long as the person likes, who may also leave one behind that doesn't come back.
void OutputDevice::openAsioControlPanel(int driver) {
  stop();
  CASIOInterface& asio = player().asio();
  const ProgressScope scope(prompter_, "The driver's control panel is open");
  const auto goOn = [&] { return scope.progress().report(0.0f); };
  if (!asio.OpenControlPanel(driver, goOn)) {
    prompter_.message(withReason("Unable to open the control panel", asio.errorText()));
  }
}

OutputDevice::ReportOutcome OutputDevice::writeAsioReport(FileSystem& files, int driver,
                                                          const OutputSettings& settings,
                                                          const std::string& path) {
  stop();
  choose(settings);
  CASIOInterface& asio = player().asio();
  const std::string text = player().asioReport(driver);
  const std::string failure = asio.errorText();
  if (!failure.empty()) prompter_.message(failure);
  if (driver < 0 || driver >= asio.GetDeviceCount()) return ReportOutcome::driverFailed;
  const SaveResult result = writeTextFile(files, path, text);
  if (!result.saved) {
    prompter_.message(withReason("Unable to save " + path, result.reason));
    return ReportOutcome::fileError;
  }
  return failure.empty() ? ReportOutcome::complete : ReportOutcome::driverFailed;
}

}  // namespace plumetta
