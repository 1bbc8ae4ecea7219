// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/prompter.h"
#include "core/wave.h"

namespace plumetta {

// Shows the progress of a command while it lives, and remembers whether the person has cancelled it.
class LongWork {
 public:
  LongWork(Prompter& prompter, const std::string& title) : scope_(prompter, title) {}
  LongWork(const LongWork&) = delete;
  LongWork& operator=(const LongWork&) = delete;

  // Valid while this lives.
  WaveProgress progress() { return {&LongWork::report, this}; }
  bool cancelled() const { return cancelled_; }

 private:
  static bool report(float fractionDone, void* self) {
    auto& work = *static_cast<LongWork*>(self);
    work.cancelled_ = work.cancelled_ || !work.scope_.progress().report(fractionDone);
    return !work.cancelled_;
  }

  ProgressScope scope_;
  bool cancelled_ = false;
};

// Hands the progress of some work to a buffer for as long as it lives.
class WaveReports {
 public:
  WaveReports(CWave& wave, LongWork& work) : wave_(wave) { wave_.progress = work.progress(); }
  ~WaveReports() { wave_.progress = {}; }
  WaveReports(const WaveReports&) = delete;
  WaveReports& operator=(const WaveReports&) = delete;

 private:
  CWave& wave_;
};

}  // namespace plumetta
