// SPDX-License-Identifier: GPL-3.0-or-later
// What the keyboard does in the waveform.
#include <cmath>

#include "ui/waveform_canvas.h"

namespace plumetta {
namespace {

constexpr double kZoomStep = 2;

}  // namespace

void WaveformCanvas::moveCursor(int64_t frame, bool extend) {
  const ViewState& state = doc().view();
  const int32_t target = doc().clampFrame(frame);
  if (extend) {
    // The end away from the cursor stays.
    const int32_t fixed = !state.hasSelection()                  ? state.cursor
                          : state.cursor == state.selectionStart ? state.selectionEnd
                                                                 : state.selectionStart;
    doc().select(fixed, target);
  } else if (state.hasSelection()) {
    doc().select(target, target);
  }
  doc().setCursor(target);
  view_.show(target);
}

bool WaveformCanvas::moveByKey(const wxKeyEvent& event) {
  // A pixel a step, or a frame where frames are wider; a tenth of the window with Ctrl.
  const double step = event.ControlDown() ? view_.span() / 10 : view_.scale().framesPerPixel;
  const auto frames = std::max<int64_t>(std::llround(step), 1);
  const int64_t page = std::max<int64_t>(std::llround(view_.span() * 0.9), 1);
  const int64_t cursor = doc().view().cursor;
  switch (event.GetKeyCode()) {
    case WXK_LEFT:
    case WXK_NUMPAD_LEFT:
      moveCursor(cursor - frames, event.ShiftDown());
      return true;
    case WXK_RIGHT:
    case WXK_NUMPAD_RIGHT:
      moveCursor(cursor + frames, event.ShiftDown());
      return true;
    case WXK_PAGEUP:
    case WXK_NUMPAD_PAGEUP:
      moveCursor(cursor - page, event.ShiftDown());
      return true;
    case WXK_PAGEDOWN:
    case WXK_NUMPAD_PAGEDOWN:
      moveCursor(cursor + page, event.ShiftDown());
      return true;
    case WXK_HOME:
    case WXK_NUMPAD_HOME:
      moveCursor(0, event.ShiftDown());
      return true;
    case WXK_END:
    case WXK_NUMPAD_END:
      moveCursor(doc().lastFrame(), event.ShiftDown());
      return true;
    default:
      return false;
  }
}

void WaveformCanvas::onKey(wxKeyEvent& event) {
  if (event.AltDown() || moveByKey(event)) {
    if (event.AltDown()) event.Skip();
    return;
  }
  switch (event.GetKeyCode()) {
    case '+':
    case '=':
    case WXK_NUMPAD_ADD:
      event.ControlDown() ? view_.setAmplitudeZoom(view_.amplitudeZoom() * kZoomStep)
                          : view_.zoomBy(kZoomStep);
      return;
    case '-':
    case WXK_NUMPAD_SUBTRACT:
      event.ControlDown() ? view_.setAmplitudeZoom(view_.amplitudeZoom() / kZoomStep)
                          : view_.zoomBy(1 / kZoomStep);
      return;
    case WXK_UP:
    case WXK_NUMPAD_UP:
      view_.setAmplitudeZoom(view_.amplitudeZoom() * std::sqrt(kZoomStep));
      return;
    case WXK_DOWN:
    case WXK_NUMPAD_DOWN:
      view_.setAmplitudeZoom(view_.amplitudeZoom() / std::sqrt(kZoomStep));
      return;
    case WXK_ESCAPE:
      if (cancelDrag()) return;
      break;
    default:
      break;
  }
  event.Skip();
}

}  // namespace plumetta
