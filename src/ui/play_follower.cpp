// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/play_follower.h"

namespace plumetta {
namespace {

constexpr int kTickMilliseconds = 16;

}  // namespace

PlayFollower::PlayFollower(Application& app, DocumentTabs& tabs) : app_(app), tabs_(tabs) {
  timer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { onTick(); });
}

void PlayFollower::begin() {
  PlaybackSource* const source = app_.transport().controls().source;
  if (source != source_) end();
  source_ = source;
  if (source_ == nullptr) return;
  latency_ = app_.output().latency();
  endedAt_.reset();
  position_.begin(now(), source_->playback().position, latency_);
  if (!timer_.IsRunning()) timer_.Start(kTickMilliseconds);
}

void PlayFollower::end() {
  timer_.Stop();
  if (DocumentPanel* panel = tabs_.panelOf(source_)) panel->showPlayFrame(std::nullopt);
  source_ = nullptr;
  heardFrame_.reset();
}

void PlayFollower::onTick() {
  const PlaybackControls& controls = app_.transport().controls();
  DocumentPanel* const panel = tabs_.panelOf(source_);
  if (panel == nullptr || controls.source != source_) {
    end();
    if (onEnded) onEnded();
    return;
  }
  if (controls.playing) {
    endedAt_.reset();
  } else if (!endedAt_) {
    endedAt_ = now();
  }
  latency_ = app_.output().latency();
  position_.setLatency(latency_);
  position_.note(now(), source_->playback().position);
  panel->followPlayback();
  heardFrame_ = position_.at(now());
  panel->showPlayFrame(heardFrame_);
  if (!endedAt_ || now() < *endedAt_ + latency_) return;
  end();
  if (onEnded) onEnded();
}

}  // namespace plumetta
