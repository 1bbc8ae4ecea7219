// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/view_window.h"

namespace plumetta {

// Moves a marker; recorded as one step when it is dropped somewhere else.
class MarkerDrag : public Drag {
 public:
  // `startX`: where the flag was taken hold of; it moves with the pointer by the same distance.
  MarkerDrag(WaveView& view, int marker, int startX)
      : view_(view), marker_(marker), startX_(startX), from_(view.doc.wave().markers[marker].position) {}

  void move(const wxPoint& at, bool constrained) override;
  void drop() override;
  void cancel() override;

 private:
  WaveView& view_;
  int marker_;
  int startX_;
  int32_t from_;
};

// Moves one end of the loop; past the other one they change places.
class LoopDrag : public Drag {
 public:
  LoopDrag(WaveView& view, int32_t fixedEnd, int32_t movingEnd)
      : view_(view), fixed_(fixedEnd), from_(movingEnd), at_(movingEnd) {}

  void move(const wxPoint& at, bool constrained) override;
  void drop() override;
  void cancel() override;

 private:
  WaveView& view_;
  int32_t fixed_;
  int32_t from_;
  int32_t at_;
};

}  // namespace plumetta
