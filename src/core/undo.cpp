// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/undo.h"

#include <algorithm>
#include <cstdio>

#include "platform/paths.h"

namespace plumetta {

CDoUndo::CDoUndo(FileSystem& files, UndoFolder& folder, AudioLock& lock)
    : files_(files), folder_(folder), lock_(lock) {}

CDoUndo::~CDoUndo() = default;

void CDoUndo::attach(CWave& wave, DisplayState& display) {
  wave_ = &wave;
  display_ = &display;
}

std::unique_ptr<UndoStep> CDoUndo::describe(UndoKind kind) const {
  return std::make_unique<UndoStep>(kind, *wave_, display_->viewState(), files_);
}

std::unique_ptr<UndoStep> CDoUndo::makeStep(UndoKind kind) {
  auto step = describe(kind);
  if (kind == UndoKind::annotations) return step;
  if (inRam_ == 1) {
    step->keepInMemory(*wave_);
  } else if (const std::string path = nextFilePath(); !path.empty()) {
    step->keepInFile(*wave_, path);
  }
  return step;
}

std::unique_ptr<UndoStep> CDoUndo::makeStepForExchange(UndoKind kind) {
  return inRam_ == 1 ? describe(kind) : makeStep(kind);
}

std::string CDoUndo::nextFilePath() {
  const std::string& folder = folder_.path();
  if (folder.empty()) return {};
  char name[64];  // the journal's own address keeps the names of open documents apart
  std::snprintf(name, sizeof name, "~plumetta_%8.8llX_%4.4u.tmp",
                static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(this)), fileCounter_++);
  return joinPath(folder, name);
}

void CDoUndo::push(std::unique_ptr<UndoStep> step) {
  for (size_t i = current_; i < kSlots && slots_[i]; ++i) slots_[i].reset();
  if (current_ == kSlots) {
    slots_.front().reset();
    std::move(slots_.begin() + 1, slots_.end(), slots_.begin());
    --current_;
  }
  slots_[current_++] = std::move(step);
  ++revision_;
}

UndoResult CDoUndo::undo() {
  if (!canUndo()) return UndoResult::nothing;
  if (!exchange(slots_[current_ - 1])) return UndoResult::samplesMissing;
  --current_;
  ++revision_;
  return UndoResult::done;
}

UndoResult CDoUndo::redo() {
  if (!canRedo()) return UndoResult::nothing;
  if (!exchange(slots_[current_])) return UndoResult::samplesMissing;
  ++current_;
  ++revision_;
  return UndoResult::done;
}

// Restores the slot's step and leaves the state from before in the slot. Samples that lie in memory change
// places without a copy; everything that can fail is done before the document is touched.
bool CDoUndo::exchange(std::unique_ptr<UndoStep>& slot) {
  const bool annotationsOnly = slot->kind() == UndoKind::annotations;
  BlockMemory samples;
  if (!annotationsOnly) {
    if (!slot->holdsSamples()) return false;
    if (!slot->inMemory() && !slot->load(samples)) return false;
  }
  auto present = describe(annotationsOnly ? UndoKind::annotations : UndoKind::layout);
  if (!annotationsOnly) {
    if (inRam_ != 1) {
      if (const std::string path = nextFilePath(); !path.empty()) present->keepInFile(*wave_, path);
    }
    if (slot->inMemory()) samples = slot->takeMemory();
  }
  {
    const AudioLockHeld held(lock_);
    if (!annotationsOnly) {
      int channels = slot->channels();
      int32_t frames = slot->frames();
      wave_->exchangeBlock(samples, channels, frames);
    }
    slot->restoreAnnotations(*wave_);
  }
  if (!annotationsOnly && !present->holdsSamples()) present->adopt(std::move(samples));
  present->setName(slot->name());
  display_->setViewState(slot->view());
  display_->samplesChanged();
  slot = std::move(present);
  return true;
}

std::vector<std::string> CDoUndo::stepNames() const {
  std::vector<std::string> names;
  for (size_t i = 0; i < kSlots && slots_[i]; ++i) names.push_back(slots_[i]->name());
  return names;
}

void CDoUndo::destroy() {
  for (auto& slot : slots_) slot.reset();
  current_ = 0;
  ++revision_;
}

}  // namespace plumetta
