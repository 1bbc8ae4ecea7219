// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/interrupt.h"

#include <csignal>

namespace plumetta {
namespace {

volatile std::sig_atomic_t interruptedFlag = 0;

extern "C" void noteInterrupt(int) { interruptedFlag = 1; }

void handle(void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

}  // namespace

InterruptWatch::InterruptWatch() { watchAgain(); }

InterruptWatch::~InterruptWatch() { handle(SIG_DFL); }

bool InterruptWatch::interrupted() const { return interruptedFlag != 0; }

void InterruptWatch::watchAgain() {
  interruptedFlag = 0;
  handle(noteInterrupt);
}

}  // namespace plumetta
