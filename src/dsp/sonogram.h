// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "core/wave.h"
#include "core/work_crew.h"
#include "dsp/strip_spectra.h"

namespace plumetta {

// Which spectra a sonogram has: time is parted into columns of one length, one behind the other.
struct SonogramPlan {
  double firstFrame = 0.0;  // where the first column begins; may lie outside of the buffer
  double framesPerColumn = 1.0;
  int columns = 1;  // at least 1
  // Blocks a column, evenly spread in it, whose power is averaged. Columns shorter than a block have their
  // one block about their middle, so that neighbours overlap.
  int blocksPerColumn = 1;
  SpectrumSettings spectrum;
  std::vector<int> channels;  // those to look at, at least one
  bool together = false;      // their powers averaged, rather than a plane for each

  int planes() const { return together ? 1 : static_cast<int>(channels.size()); }
  double middleOf(int column) const { return firstFrame + (column + 0.5) * framesPerColumn; }
};

// Spectra along time, made in short pieces: the first block of every column first, so that there soon is
// something of all of them. Levels are amplitudes as those of a SpectrumRecord, the same to the last bit
// however many cores there are; frames outside of the buffer are silence.
class Sonogram {
 public:
  Sonogram(const CWave& wave, SonogramPlan plan);

  // Takes the next few milliseconds' worth of blocks of the same buffer, unchanged since. False once there
  // are no more.
  bool advance(const CWave& wave);
  double fractionDone() const;
  // Every column has something to show.
  bool overviewDone() const { return nextItem_ >= itemsPerPass(); }

  const SonogramPlan& plan() const { return plan_; }
  size_t lines() const { return spectra_.lines(); }
  double hzPerLine() const { return hzPerLine_; }
  // The sums of the powers of one column, line by line, and what makes a power 1 of a sine of amplitude 1.
  std::span<const float> powers(int plane, int column) const;
  double powerScale(int column) const;
  // Of the blocks so far; 0 where there is none yet.
  double amplitude(int plane, int column, size_t line) const;

 private:
  // An item is one block of one channel, `pass` counts the blocks of a column.
  int64_t itemsPerPass() const {
    return int64_t{plan_.columns} * static_cast<int64_t>(plan_.channels.size());
  }
  int64_t items() const { return itemsPerPass() * plan_.blocksPerColumn; }
  int columnOf(int64_t item) const {
    return static_cast<int>(item % itemsPerPass() / static_cast<int64_t>(plan_.channels.size()));
  }
  StripSpectra::Strip stripOf(int64_t item) const;
  void addItems(const CWave& wave, int64_t first, int64_t end, StripSpectra::Bench& bench);
  size_t at(int plane, int column) const;

  SonogramPlan plan_;
  FrameRange buffer_;
  StripSpectra spectra_;
  double hzPerLine_;
  int64_t nextItem_ = 0;
  std::vector<float> sums_;  // planes × columns × lines
  WorkCrew crew_;
  std::vector<StripSpectra::Bench> benches_;
};

}  // namespace plumetta
