// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/interrupt.h"

#include <windows.h>

#include <atomic>

namespace plumetta {
namespace {

std::atomic<bool> interruptedFlag{false};

// On a thread of the system. FALSE passes it on, to what ends the process.
BOOL WINAPI noteInterrupt(DWORD) { return interruptedFlag.exchange(true) ? FALSE : TRUE; }

}  // namespace

InterruptWatch::InterruptWatch() {
  interruptedFlag = false;
  SetConsoleCtrlHandler(noteInterrupt, TRUE);
}

InterruptWatch::~InterruptWatch() { SetConsoleCtrlHandler(noteInterrupt, FALSE); }

bool InterruptWatch::interrupted() const { return interruptedFlag; }

void InterruptWatch::watchAgain() { interruptedFlag = false; }

}  // namespace plumetta
