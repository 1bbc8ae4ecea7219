// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/display_state.h"
#include "core/undo_folder.h"
#include "core/undo_step.h"
#include "core/wave.h"

namespace plumetta {

enum class UndoResult {
  done,
  nothing,         // no step in that direction
  samplesMissing,  // the step's samples could not be kept or read back; the document stays as it is
};

// The undo and redo steps of one document, each a full copy of its state, in memory or in temporary files.
// UI thread; whoever calls holds no lock: undo and redo take the audio lock for the moment of the exchange,
// once everything that takes time is done.
class CDoUndo {
 public:
  static constexpr size_t kSlots = 2048;

  CDoUndo(FileSystem& files, UndoFolder& folder, AudioLock& lock);
  virtual ~CDoUndo();
  CDoUndo(const CDoUndo&) = delete;
  CDoUndo& operator=(const CDoUndo&) = delete;

  void attach(CWave& wave, DisplayState& display);
  // 1 keeps samples in memory, anything else in temporary files; counts for steps made from now on.
  void setInRam(uint8_t mode) { inRam_ = mode; }

  // The current state without its samples, which the step is given later: for a change that replaces the
  // whole block, whose old one then goes into the step. Where steps are kept in files it is complete at once.
  std::unique_ptr<UndoStep> makeStepForExchange(UndoKind kind);
  // The current state as a step that is not in the journal yet.
  std::unique_ptr<UndoStep> makeStep(UndoKind kind);
  // Makes a step the newest one; redo steps go, and with a full journal the oldest step.
  void push(std::unique_ptr<UndoStep> step);
  void push(UndoKind kind) { push(makeStep(kind)); }
  // Restores a step that never went into the journal: an operation that failed half-way is taken back. False
  // when the step's samples could not be kept or read back.
  bool restore(std::unique_ptr<UndoStep> step) { return exchange(step); }

  UndoResult undo();
  UndoResult redo();
  bool canUndo() const { return current_ > 0; }
  bool canRedo() const { return current_ < kSlots && slots_[current_] != nullptr; }
  size_t undoCount() const { return current_; }
  // The steps' names, the oldest first; the first `undoCount()` can be undone, the rest redone.
  std::vector<std::string> stepNames() const;
  // Another number whenever steps or names may have changed.
  uint64_t revision() const { return revision_; }
  void destroy();

 private:
  std::unique_ptr<UndoStep> describe(UndoKind kind) const;
  bool exchange(std::unique_ptr<UndoStep>& slot);
  std::string nextFilePath();

  FileSystem& files_;
  UndoFolder& folder_;
  AudioLock& lock_;
  CWave* wave_ = nullptr;
  DisplayState* display_ = nullptr;
  std::array<std::unique_ptr<UndoStep>, kSlots> slots_;
  size_t current_ = 0;  // undoable steps; the slots from here on hold redo steps
  uint64_t revision_ = 0;
  unsigned fileCounter_ = 0;
  uint8_t inRam_ = 1;
};

}  // namespace plumetta
