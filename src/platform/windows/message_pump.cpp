// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/message_pump.h"

#include <windows.h>

namespace plumetta {

void dispatchWaitingMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    // The wish to end the program is for its own loop.
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace plumetta
