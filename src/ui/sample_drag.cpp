// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/sample_drag.h"

#include <algorithm>
#include <cstdio>

namespace plumetta {

void SampleDrag::move(const wxPoint& at, bool) {
  const auto value = static_cast<float>(std::clamp(lane_.value(at.y), -1.0, 1.0));
  view_.preview.sample = DragPreview::SampleValue{frame_, channel_, value};
  char text[32];
  std::snprintf(text, sizeof text, " : %.4f", static_cast<double>(value));
  view_.doc.prompter().status(view_.positionText(frame_) + text);
  view_.onPreviewChanged();
}

void SampleDrag::drop() {
  const auto moved = view_.preview.sample;
  view_.clearPreview();
  if (!moved || moved->value == view_.doc.wave().sample(frame_, channel_)) return;
  view_.run("sample", FrameOrTime{static_cast<double>(frame_)}, int64_t{channel_}, double{moved->value});
}

void SampleDrag::cancel() {
  view_.clearPreview();
  view_.doc.prompter().status("");
}

}  // namespace plumetta
