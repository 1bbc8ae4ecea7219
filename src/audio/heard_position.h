// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>

namespace plumetta {

// Which frame of the document is heard at this moment. The engine's position runs ahead of that by what the
// device has queued, and goes a block at a time; here it is told late by as much, and moves evenly between
// blocks. Times are in seconds of any steady clock, positions in frames. UI thread.
class HeardPosition {
 public:
  // `latency` seconds lie between the engine and the ear.
  void begin(double time, double position, double latency);
  // Another one from now on, as when the rack is switched on or off.
  void setLatency(double latency) { latency_ = latency; }
  // What the engine's position is now; several times a block.
  void note(double time, double position);
  // Forgets what can't be heard any more, so times may not go back.
  double at(double time);

 private:
  struct Moment {
    double time, position;
  };
  double latency_ = 0;
  std::deque<Moment> moments_{{0, 0}};  // never empty; each one another position than the one before
};

}  // namespace plumetta
