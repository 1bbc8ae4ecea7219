// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace plumetta {

// Where a document is looked at and what is selected in it. A selection whose ends are equal is none; the
// ends may stand in either order.
struct ViewState {
  int32_t selectionStart = 0;
  int32_t selectionEnd = 0;
  int32_t cursor = 0;
  double firstVisibleFrame = 0.0;
  double framesPerPixel = 0.0;  // 0 shows the whole file

  bool hasSelection() const { return selectionStart != selectionEnd; }
  int32_t lowerBound() const { return selectionStart < selectionEnd ? selectionStart : selectionEnd; }
  int32_t upperBound() const { return selectionStart < selectionEnd ? selectionEnd : selectionStart; }
};

// What the journal needs of a document's display.
class DisplayState {
 public:
  virtual ~DisplayState() = default;
  virtual ViewState viewState() const = 0;
  // Clamps the cursor to the last frame, and to 0 in an empty buffer.
  virtual void setViewState(const ViewState& state) = 0;
  // The samples have changed: peak data is stale and every view shall be drawn again.
  virtual void samplesChanged() = 0;
};

}  // namespace plumetta
