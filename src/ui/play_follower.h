// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/stopwatch.h>
#include <wx/timer.h>

#include <functional>
#include <optional>

#include "app/application.h"
#include "audio/heard_position.h"
#include "ui/document_tabs.h"

namespace plumetta {

// Lets the windows of documents follow what is played: the play cursor stands at what is heard, moving about
// sixty times a second, and the document follows winding. Its timer runs only while something is heard.
class PlayFollower {
 public:
  PlayFollower(Application& app, DocumentTabs& tabs);

  // Something has begun to play, from the play position on.
  void begin();
  // Nothing is to be seen of it any more.
  void end();
  // The document that is followed, and the frame of it that is heard; nothing when nothing is.
  const PlaybackSource* source() const { return source_; }
  std::optional<double> heardFrame() const { return heardFrame_; }

  // The last sound has been heard.
  std::function<void()> onEnded;

 private:
  void onTick();
  double now() const { return 1e-6 * static_cast<double>(watch_.TimeInMicro().GetValue()); }

  Application& app_;
  DocumentTabs& tabs_;
  wxTimer timer_;
  wxStopWatch watch_;
  HeardPosition position_;
  PlaybackSource* source_ = nullptr;
  std::optional<double> heardFrame_;
  std::optional<double> endedAt_;  // when the engine had given out the last sound
  double latency_ = 0;             // in seconds
};

}  // namespace plumetta
