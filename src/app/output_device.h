// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/setting_groups.h"
#include "audio/audio_player.h"
#include "audio/playback_engine.h"
#include "audio/transport.h"
#include "core/prompter.h"
#include "platform/file_system.h"

namespace plumetta {

// The device that sound goes to, and what pulls the playback engine. Made when it is first asked for, since
// looking for devices can take a moment. UI thread.
class OutputDevice {
 public:
  OutputDevice(Prompter& prompter, PlaybackEngine& engine, Transport& transport, WaveOutSystem& waveOut,
               AsioSystem& asio)
      : prompter_(prompter), engine_(engine), transport_(transport), waveOut_(waveOut), asio_(asio) {}

  // Does nothing while it runs. False, after a message, when nothing will sound.
  bool start(const OutputSettings& settings);
  // Playing stops too. Within about two seconds, whatever the device does.
  void stop();
  bool running() const { return player_ && player_->running(); }
  // Looks whether the device has failed: then playing has stopped, and a message has said so. Several times a
  // second while it runs.
  void watch();
  // Buffers that came too late since it was started.
  int underruns() const { return player_ ? player_->underruns() : 0; }
  // Seconds from what the engine gives out to the ear: the device's queue.
  double queuedSeconds() const { return player_ ? player_->latency() : 0.0; }
  // Seconds from what the engine reads to the ear: that, and the rack's delay while it is on.
  double latency() const;

  // Like stop(), when the audio thread is in code that never comes back: thread, buffers and device are left
  // behind, and the next start begins with others.
  void abandon();

  // Asked of the system afresh.
  std::vector<std::string> waveOutNames();
  // As they were when the program began.
  std::vector<std::string> asioNames();
  // The channels of the chosen driver. An ASIO driver that doesn't play is loaded for the question.
  int channelCount(const OutputSettings& settings);

  // Each stops what plays. A message tells of each failure.
  void openAsioControlPanel(int driver);
  // A report of a driver that fails is written as far as it came.
  enum class ReportOutcome { complete, driverFailed, fileError };
  ReportOutcome writeAsioReport(FileSystem& files, int driver, const OutputSettings& settings,
                                const std::string& path);

 private:
  AudioPlayer& player();
  void hearPlayedRate(int hz);
  void choose(const OutputSettings& settings);

  Prompter& prompter_;
  PlaybackEngine& engine_;
  Transport& transport_;
  WaveOutSystem& waveOut_;
  AsioSystem& asio_;
  std::unique_ptr<AudioPlayer> player_;
};

}  // namespace plumetta
