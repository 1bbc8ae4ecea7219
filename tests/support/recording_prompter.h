// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "core/prompter.h"

namespace plumetta {

// Keeps everything that would have been said.
class RecordingPrompter : public Prompter {
 public:
  void message(const std::string& text) override { messages.push_back(text); }
  bool question(const std::string& text) override {
    questions.push_back(text);
    return answer;
  }
  bool confirmLoss(const std::string& text) override {
    losses.push_back(text);
    return answer;
  }
  void status(const std::string& text) override { lastStatus = text; }
  void setBusy(bool busy) override { busyDepth += busy ? 1 : -1; }
  WaveProgress beginProgress(const std::string&) override { return {onProgress, this}; }
  void endProgress() override {}

  std::vector<std::string> messages;
  std::vector<std::string> questions;
  std::vector<std::string> losses;
  std::string lastStatus;
  bool answer = true;
  int busyDepth = 0;
  int reports = 0;
  int cancelAfter = -1;  // reports until work is asked to stop; negative never

 private:
  static bool onProgress(float, void* self) {
    auto& prompter = *static_cast<RecordingPrompter*>(self);
    return prompter.cancelAfter < 0 || ++prompter.reports <= prompter.cancelAfter;
  }
};

}  // namespace plumetta
