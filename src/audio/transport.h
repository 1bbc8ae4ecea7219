// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "audio/playback_controls.h"
#include "core/audio_lock.h"

namespace plumetta {

// The play commands. Each takes the active document, null when there is none: then nothing happens. UI
// thread.
class Transport {
 public:
  static constexpr int kMostWindSpeed = 99;

  // `startOutput` starts the output where it isn't running yet; false when it can't, and then nothing plays.
  Transport(AudioLock& lock, std::function<bool()> startOutput)
      : lock_(lock), startOutput_(std::move(startOutput)) {}
  Transport(const Transport&) = delete;
  Transport& operator=(const Transport&) = delete;

  PlaybackControls& controls() { return controls_; }
  const PlaybackControls& controls() const { return controls_; }

  // From the selection's lower end, or else from the cursor. False when nothing plays.
  bool play(PlaybackSource* active);
  // From the first frame to the last, whatever is selected.
  bool playAll(PlaybackSource* active);
  // Plays, or halts with the cursor where playing has come to, so that the next play goes on from there.
  void togglePlay(PlaybackSource* active);
  void stop();
  void toggleRewind(PlaybackSource* active) { toggleWind(active, WindMode::rewind); }
  void toggleForward(PlaybackSource* active) { toggleWind(active, WindMode::forward); }
  void toggleLoop() { controls_.loop = !controls_.loop; }

  // 1..99; anything else changes nothing.
  void setWindSpeed(int blocks);

  // Before a document goes: it is not played any more, and no callback touches it again.
  void release(const PlaybackSource& source);

 private:
  bool start(PlaybackSource* active, bool wholeFile);
  void toggleWind(PlaybackSource* active, WindMode mode);

  AudioLock& lock_;
  std::function<bool()> startOutput_;
  PlaybackControls controls_;
};

}  // namespace plumetta
