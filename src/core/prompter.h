// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/wave_progress.h"

namespace plumetta {

// How everything below the window and the command line talks to a person. UI thread.
class Prompter {
 public:
  virtual ~Prompter() = default;

  // A text that has to be read before work goes on.
  virtual void message(const std::string& text) = 0;
  // A yes/no question.
  virtual bool question(const std::string& text) = 0;
  // A passing note in the status line; empty clears it.
  virtual void status(const std::string& text) = 0;
  // The wait cursor, nested calls counted.
  virtual void setBusy(bool busy) = 0;
  // Long work begins; what it gives back is reported to until `endProgress`. `title` says what is being done.
  virtual WaveProgress beginProgress(const std::string& title) = 0;
  virtual void endProgress() = 0;
  // The progress under way has equal parts, of which so many are done; what is begun inside of it reports the
  // next one. False once the person has asked to stop.
  virtual bool progressPart(int /*done*/, int /*all*/) { return true; }
  // `text` says what is about to be lost: true to go on all the same. Who has been told may choose not to be
  // asked again.
  virtual bool confirmLoss(const std::string& text) {
    message(text);
    return true;
  }
};

// Shows the wait cursor while it lives.
class BusyScope {
 public:
  explicit BusyScope(Prompter& prompter) : prompter_(prompter) { prompter_.setBusy(true); }
  ~BusyScope() { prompter_.setBusy(false); }
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;

 private:
  Prompter& prompter_;
};

// Shows progress while it lives.
class ProgressScope {
 public:
  ProgressScope(Prompter& prompter, const std::string& title)
      : prompter_(prompter), progress_(prompter.beginProgress(title)) {}
  ~ProgressScope() { prompter_.endProgress(); }
  ProgressScope(const ProgressScope&) = delete;
  ProgressScope& operator=(const ProgressScope&) = delete;
  const WaveProgress& progress() const { return progress_; }

 private:
  Prompter& prompter_;
  WaveProgress progress_;
};

}  // namespace plumetta
