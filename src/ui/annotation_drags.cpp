// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/annotation_drags.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace plumetta {
namespace {

constexpr int kTremble = 3;  // pixels by which a click may miss its own place

void showPreview(WaveView& view, const std::string& text) {
  view.doc.prompter().status(text);
  view.onPreviewChanged();
}

}  // namespace

void MarkerDrag::move(const wxPoint& at, bool) {
  if (!view_.preview.marker && std::abs(at.x - startX_) < kTremble) return;
  const FrameScale scale = view_.scale();
  const double moved = (at.x - startX_) * scale.framesPerPixel;
  // Beyond the window it follows the pointer at the window's side, which scrolls.
  const double low = scale.frame(0);
  const double high = scale.frame(view_.width() - 1);
  const int32_t frame = view_.doc.clampFrame(std::llround(std::clamp(from_ + moved, low, high)));
  view_.preview.marker = DragPreview::MarkerPlace{marker_, frame};
  showPreview(view_, "Marker at " + view_.positionText(frame));
}

void MarkerDrag::drop() {
  const auto place = view_.preview.marker;
  view_.clearPreview();
  if (!place || place->frame == from_) return;
  view_.run("marker-move", int64_t{marker_}, FrameOrTime{static_cast<double>(place->frame)});
}

void MarkerDrag::cancel() {
  view_.clearPreview();
  view_.doc.prompter().status("");
}

void LoopDrag::move(const wxPoint& at, bool) {
  const double x = std::clamp<double>(at.x, 0, view_.width() - 1);
  at_ = view_.doc.clampFrame(view_.scale().nearestFrame(x));
  view_.preview.loop = std::minmax(fixed_, at_);
  showPreview(view_, "Loop from " + view_.positionText(view_.preview.loop->first) + " to " +
                         view_.positionText(view_.preview.loop->second));
}

void LoopDrag::drop() {
  view_.clearPreview();
  if (at_ == from_) return;
  view_.run("loop", FrameOrTime{static_cast<double>(fixed_)}, FrameOrTime{static_cast<double>(at_)});
}

void LoopDrag::cancel() {
  view_.clearPreview();
  view_.doc.prompter().status("");
}

}  // namespace plumetta
