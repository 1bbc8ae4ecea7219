// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/terminal_prompter.h"

#include <cstdio>
#include <iostream>

#include "platform/terminal.h"

namespace plumetta {
namespace {

constexpr auto kRedrawInterval = std::chrono::milliseconds(100);
constexpr int kBarWidth = 40;

}  // namespace

void TerminalPrompter::message(const std::string& text) {
  clearBar();
  std::cerr << "message: " << text << '\n';
}

bool TerminalPrompter::question(const std::string& text) {
  clearBar();
  std::cerr << "question: " << text << '\n';
  if (answer_) return *answer_;
  if (!isTerminal(StandardStream::input)) return false;
  std::cerr << "[y/N] " << std::flush;
  std::string line;
  return std::getline(std::cin, line) && (line == "y" || line == "Y" || line == "yes");
}

WaveProgress TerminalPrompter::beginProgress(const std::string& title) {
  if (quiet_ || !isTerminal(StandardStream::error)) return {};
  title_ = title;
  lastDrawn_ = std::chrono::steady_clock::now();
  return {onProgress, this};
}

void TerminalPrompter::endProgress() { clearBar(); }

bool TerminalPrompter::onProgress(float fractionDone, void* self) {
  static_cast<TerminalPrompter*>(self)->draw(fractionDone);
  return true;
}

void TerminalPrompter::draw(float fractionDone) {
  const auto now = std::chrono::steady_clock::now();
  if (now - lastDrawn_ < kRedrawInterval) return;
  lastDrawn_ = now;
  barShown_ = true;
  const auto filled = static_cast<int>(fractionDone * kBarWidth);
  std::fprintf(stderr, "\r%s [%-*.*s] %3d %%", title_.c_str(), kBarWidth, filled,
               "########################################", static_cast<int>(fractionDone * 100));
  std::fflush(stderr);
}

void TerminalPrompter::clearBar() {
  if (!barShown_) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  barShown_ = false;
}

}  // namespace plumetta
