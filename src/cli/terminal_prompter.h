// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "core/prompter.h"

namespace plumetta {

// Talks to a person through standard error: messages and questions a line each, progress as a bar on a
// terminal and as nothing elsewhere.
class TerminalPrompter : public Prompter {
 public:
  // `answer` is the answer to every question; without one it is asked for on a terminal, and No elsewhere.
  TerminalPrompter(std::optional<bool> answer, bool quiet) : answer_(answer), quiet_(quiet) {}

  void message(const std::string& text) override;
  bool question(const std::string& text) override;
  void status(const std::string&) override {}
  void setBusy(bool) override {}
  WaveProgress beginProgress(const std::string& title) override;
  void endProgress() override;

 private:
  static bool onProgress(float fractionDone, void* self);
  void draw(float fractionDone);
  void clearBar();

  std::optional<bool> answer_;
  bool quiet_;
  std::string title_;
  bool barShown_ = false;
  std::chrono::steady_clock::time_point lastDrawn_;
};

}  // namespace plumetta
