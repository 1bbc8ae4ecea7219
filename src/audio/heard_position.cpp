// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/heard_position.h"

#include <algorithm>

namespace plumetta {

void HeardPosition::begin(double time, double position, double latency) {
  latency_ = latency;
  moments_.assign(1, {time, position});
}

void HeardPosition::note(double time, double position) {
  if (position != moments_.back().position) moments_.push_back({time, position});
}

double HeardPosition::at(double time) {
  const double heard = time - latency_;
  while (moments_.size() > 1 && moments_[1].time <= heard) moments_.pop_front();
  const Moment& from = moments_.front();
  if (moments_.size() == 1) return from.position;
  const Moment& to = moments_[1];
  // Back is a jump, to the start of a loop or by rewinding, and nothing in between is heard.
  if (to.position < from.position) return from.position;
  const double part = std::clamp((heard - from.time) / (to.time - from.time), 0.0, 1.0);
  return from.position + part * (to.position - from.position);
}

}  // namespace plumetta
