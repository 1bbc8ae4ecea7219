// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/display_state.h"
#include "core/wave.h"
#include "platform/file_system.h"

namespace plumetta {

// What a step was recorded for. Only `annotations` makes a difference here: such a step holds no samples.
enum class UndoKind {
  wholeFile = 1,
  cut = 2,
  paste = 3,
  erase = 4,
  selection = 5,
  layout = 6,  // whole file before a change of length or layout; also what undo and redo record
  insertSilence = 7,
  annotations = 8,
};

// One recorded state of a document; owns its memory copy or its temporary file.
class UndoStep {
 public:
  // Copies the state of the buffer and its display, without samples.
  UndoStep(UndoKind kind, const CWave& wave, const ViewState& view, FileSystem& files);
  ~UndoStep();
  UndoStep(const UndoStep&) = delete;
  UndoStep& operator=(const UndoStep&) = delete;

  UndoKind kind() const { return kind_; }
  bool holdsSamples() const { return samples_ != Samples::none; }

  void keepInMemory(const CWave& wave);
  void keepInFile(const CWave& wave, const std::string& path);
  // Takes a block over instead of copying it.
  void adopt(BlockMemory block);
  // Brings the samples into memory, if they are not there; false when they can't be had.
  bool load(BlockMemory& block) const;
  // Lends the memory copy out, for an exchange of blocks.
  BlockMemory takeMemory();

  // Puts format and annotations back; the samples are the journal's business.
  void restoreAnnotations(CWave& wave) const;
  const ViewState& view() const { return view_; }
  // What undoing this step takes back, as the history names it.
  const std::string& name() const { return name_; }
  void setName(std::string name) { name_ = std::move(name); }
  int channels() const { return channels_; }
  int32_t frames() const { return frames_; }
  bool inMemory() const { return samples_ == Samples::memory; }

 private:
  enum class Samples { none, memory, file };
  size_t bytes() const;

  UndoKind kind_;
  ViewState view_;
  std::string name_;
  CLoopPoints loops_;
  CVolumeEnvelope envelope_;
  CMarkerList markers_;
  int32_t frames_;
  int channels_;
  uint32_t sampleRate_;
  int bits_;
  uint16_t formatTag_;
  FileSystem& files_;
  Samples samples_ = Samples::none;
  std::string path_;
  BlockMemory block_;
};

}  // namespace plumetta
