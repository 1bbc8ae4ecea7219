// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wave_view.h"

#include <algorithm>
#include <cmath>

#include "dsp/zero_crossing.h"

namespace plumetta {
namespace {

constexpr double kLargestAmplitudeZoom = 4096;  // a 16-bit step fills an eighth of a lane
constexpr double kSmallestAmplitudeZoom = 0.25;
constexpr double kPageMargin = 0.05;        // of the window: what the eye keeps of the page before
constexpr double kSnapReachSeconds = 0.02;  // half a period of 25 Hz

}  // namespace

FrameScale WaveView::scale() const {
  const ViewState& state = doc.view();
  return shownScale(state.firstVisibleFrame, state.framesPerPixel, doc.wave().frames(), width_);
}

void WaveView::apply(const FrameScale& scale) {
  const bool all = showsAll(scale, doc.wave().frames(), width_);
  const double first = all ? 0 : scale.first;
  const double zoom = all ? 0 : scale.framesPerPixel;
  if (first == doc.view().firstVisibleFrame && zoom == doc.view().framesPerPixel) return;
  doc.setScrollAndZoom(first, zoom);
}

void WaveView::zoomAbout(double x, double factor) {
  apply(zoomedAbout(scale(), x, factor, doc.wave().frames(), width_));
}

void WaveView::zoomBy(double factor) {
  const double cursor = scale().x(doc.view().cursor);
  zoomAbout(cursor >= 0 && cursor < width_ ? cursor : width_ / 2.0, factor);
}

void WaveView::zoomAll() { doc.setScrollAndZoom(0, 0); }

void WaveView::zoomToSelection() {
  const auto [first, last] = doc.selectionOrPoint();
  if (first == last) return;
  // A little of what lies around shows where the selection ends.
  const double margin = width_ * 0.02;
  const double zoom = (last - first) / std::max(width_ - 1 - 2 * margin, 1.0);
  apply(shownScale(first - margin * zoom, zoom, doc.wave().frames(), width_));
}

void WaveView::scrollTo(double firstFrame) {
  apply(shownScale(firstFrame, scale().framesPerPixel, doc.wave().frames(), width_));
}

void WaveView::show(double frame) { apply(showing(scale(), frame, doc.wave().frames(), width_)); }

void WaveView::showStretch(double first, double frames) {
  const double zoom = frames / (width_ > 1 ? width_ - 1 : 1);
  apply(shownScale(first, zoom, doc.wave().frames(), width_));
}

void WaveView::followPlayback(double before, double now) {
  apply(following(scale(), before, now, doc.wave().frames(), width_));
}

void WaveView::setAmplitudeZoom(double zoom) {
  amplitudeZoom_ = std::clamp(zoom, kSmallestAmplitudeZoom, kLargestAmplitudeZoom);
  refresh();
}

void WaveView::setDecibels(bool decibels) {
  decibels_ = decibels;
  refresh();
}

void WaveView::setTimeFormat(TimeFormat format) {
  settings.timeFormat = format;
  if (onSettingsChanged) onSettingsChanged();
}

int32_t WaveView::selectionEnd(int32_t frame) const {
  const auto reach = static_cast<int32_t>(doc.wave().sampleRate() * kSnapReachSeconds);
  return settings.snapToZeroCrossing ? nearestZeroCrossing(doc.wave(), frame, reach) : frame;
}

std::string WaveView::positionText(int64_t frame) const {
  const std::string text = positionIn(timeFormat(), static_cast<double>(frame), doc.wave().sampleRate());
  return text + (timeFormat() == kTimeSeconds ? " s" : timeFormat() == kTimeMilliseconds ? " ms" : "");
}

int32_t WaveView::markerFrame(int index) const {
  if (preview.marker && preview.marker->index == index) return preview.marker->frame;
  return doc.wave().markers[index].position;
}

std::pair<int32_t, int32_t> WaveView::loopRange(int index) const {
  if (index == 0 && preview.loop) return *preview.loop;
  return {doc.wave().loops.start(index), doc.wave().loops.end(index)};
}

void WaveView::clearPreview() {
  preview = {};
  if (onPreviewChanged) onPreviewChanged();
}

bool WaveView::runWith(const char* id, Arguments arguments) {
  const Command* command = findCommand(id);
  if (command == nullptr) return false;
  const Arguments fallbacks = fallbackArguments(*command);
  for (size_t i = arguments.size(); i < fallbacks.size(); ++i) arguments.push_back(fallbacks[i]);
  return runCommand(doc, *command, std::move(arguments)) == CommandOutcome::done;
}

void WaveView::refresh() {
  if (onRefresh) onRefresh();
}

}  // namespace plumetta
