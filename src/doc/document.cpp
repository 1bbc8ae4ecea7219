// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/document.h"

#include <algorithm>

#include "doc/version_chunk.h"

namespace plumetta {

CPlumettaDoc::CPlumettaDoc(DocumentServices& services)
    : services_(services), journal_(services.files, services.undoFolder, services.audioLock) {
  journal_.attach(wave_, *this);
  addVersionChunk(wave_);
}

void CPlumettaDoc::setTitle(std::string title) {
  title_ = std::move(title);
  if (listener_ != nullptr) listener_->titleChanged();
}

void CPlumettaDoc::setModified(bool modified) {
  if (modified_ == modified) return;
  modified_ = modified;
  if (listener_ != nullptr) listener_->titleChanged();
}

int32_t CPlumettaDoc::clampFrame(int64_t frame) const {
  return static_cast<int32_t>(std::clamp<int64_t>(frame, 0, lastFrame()));
}

void CPlumettaDoc::select(int64_t from, int64_t to) { setSelectionExactly(clampFrame(from), clampFrame(to)); }

void CPlumettaDoc::setSelectionExactly(int32_t start, int32_t end) {
  takeWound();
  view_.selectionStart = start;
  view_.selectionEnd = end;
  tellPlayback();
  if (listener_ != nullptr) listener_->viewChanged();
}

void CPlumettaDoc::setCursor(int64_t frame) {
  takeWound();
  view_.cursor = clampFrame(frame);
  tellPlayback();
  if (listener_ != nullptr) listener_->viewChanged();
}

void CPlumettaDoc::setScrollAndZoom(double firstVisibleFrame, double framesPerPixel) {
  view_.firstVisibleFrame = firstVisibleFrame;
  view_.framesPerPixel = framesPerPixel;
  if (listener_ != nullptr) listener_->viewChanged();
}

void CPlumettaDoc::setActive(ActiveOperation operation, int channel) {
  {
    const AudioLockHeld lock(services_.audioLock);
    wave_.setActive(operation, channel);
  }
  annotationsChanged();
}

// ---- What playing moves ---------------------------------------------------------------------------------

// Cursor and selection as playing sees them.
void CPlumettaDoc::tellPlayback() {
  playback().wound = false;
  playback().cursor = view_.cursor;
  playback().selection = SelectionEnds{view_.selectionStart, view_.selectionEnd};
}

// Winding carries the cursor along and leaves nothing selected.
bool CPlumettaDoc::takeWound() {
  if (!playback().wound.exchange(false)) return false;
  const SelectionEnds selection = playback().selection;
  view_.cursor = clampFrame(playback().cursor);
  view_.selectionStart = clampFrame(selection.start);
  view_.selectionEnd = clampFrame(selection.end);
  return true;
}

void CPlumettaDoc::followPlayback() {
  const bool wound = takeWound();
  const bool ended = playback().redraw.exchange(false);
  if ((wound || ended) && listener_ != nullptr) listener_->viewChanged();
}

void CPlumettaDoc::playbackStopped() {
  takeWound();
  playback().playCursor = view_.cursor;
  if (listener_ != nullptr) listener_->playbackStopped();
}

CPlumettaDoc::Range CPlumettaDoc::selectionOrAll() const {
  return view_.hasSelection() ? selectionOrPoint() : Range{0, lastFrame()};
}

CPlumettaDoc::Range CPlumettaDoc::selectionOrPoint() const {
  return {clampFrame(view_.lowerBound()), clampFrame(view_.upperBound())};
}

bool CPlumettaDoc::createNew(uint32_t sampleRate, int channels, int bits, int64_t frames,
                             uint16_t formatTag) {
  if (!wave_.create(sampleRate, channels, bits, frames, formatTag)) return false;
  view_ = {};
  tellPlayback();
  samplesChanged();
  return true;
}

void CPlumettaDoc::setViewState(const ViewState& state) {
  view_ = state;
  view_.cursor = clampFrame(state.cursor);
  tellPlayback();
  if (listener_ != nullptr) listener_->viewChanged();
}

const PeakPyramid& CPlumettaDoc::peaks() {
  // A window may be painted while a command that has already changed the length still runs.
  if (peaksStale_ || !peaks_.fits(wave_)) peaks_.rebuild(wave_);
  peaksStale_ = false;
  return peaks_;
}

void CPlumettaDoc::samplesChanged() {
  peaksStale_ = true;
  if (listener_ != nullptr) listener_->samplesChanged();
}

void CPlumettaDoc::annotationsChanged() {
  if (listener_ != nullptr) listener_->annotationsChanged();
}

}  // namespace plumetta
