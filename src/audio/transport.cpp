// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/transport.h"

#include <algorithm>

namespace plumetta {

bool Transport::play(PlaybackSource* active) { return start(active, false); }

bool Transport::playAll(PlaybackSource* active) { return start(active, true); }

bool Transport::start(PlaybackSource* active, bool wholeFile) {
  if (active == nullptr || !startOutput_()) return false;
  PlaybackPlace& place = active->playback();
  const SelectionEnds selection = place.selection;
  const bool selected = selection.start != selection.end;
  const int32_t from = selected ? std::min(selection.start, selection.end) : place.cursor.load();
  // All at once for the callback: a block is either of what played before or of this.
  const AudioLockHeld held(lock_);
  controls_.source = active;
  place.position = wholeFile ? 0 : from;
  controls_.wholeFile = wholeFile;
  controls_.windMode = WindMode::none;
  controls_.playing = true;
  return true;
}

void Transport::togglePlay(PlaybackSource* active) {
  if (!controls_.playing) {
    play(active);
    return;
  }
  controls_.windMode = WindMode::none;
  controls_.playing = false;
  if (PlaybackSource* source = controls_.source) source->setCursor(source->playback().playCursor);
}

void Transport::stop() {
  controls_.playing = false;
  controls_.windMode = WindMode::none;
  if (PlaybackSource* source = controls_.source) source->playbackStopped();
}

void Transport::toggleWind(PlaybackSource* active, WindMode mode) {
  if (controls_.windMode == WindMode::none && !play(active)) return;
  controls_.windMode = controls_.windMode == mode ? WindMode::none : mode;
}

void Transport::setWindSpeed(int blocks) {
  if (blocks >= 1 && blocks <= kMostWindSpeed) controls_.windSpeed = blocks;
}

void Transport::release(const PlaybackSource& source) {
  const AudioLockHeld held(lock_);
  if (controls_.source != &source) return;
  controls_.playing = false;
  controls_.windMode = WindMode::none;
  controls_.source = nullptr;
}

}  // namespace plumetta
