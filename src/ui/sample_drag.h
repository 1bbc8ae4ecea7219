// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/view_window.h"

namespace plumetta {

// Moves one sample up and down; recorded as one step when it is dropped with another value.
class SampleDrag : public Drag {
 public:
  // `lane`: the amplitudes of the channel's lane.
  SampleDrag(WaveView& view, int32_t frame, int channel, const AmplitudeScale& lane)
      : view_(view), frame_(frame), channel_(channel), lane_(lane) {}

  void move(const wxPoint& at, bool constrained) override;
  void drop() override;
  void cancel() override;

 private:
  WaveView& view_;
  int32_t frame_;
  int channel_;
  AmplitudeScale lane_;
};

}  // namespace plumetta
