// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/terminal.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>

namespace plumetta {

// The C library would also call NUL a terminal; only a console has a mode.
bool isTerminal(StandardStream stream) {
  const intptr_t handle = _get_osfhandle(static_cast<int>(stream));
  DWORD mode = 0;
  return handle > 0 && GetConsoleMode(reinterpret_cast<HANDLE>(handle), &mode) != 0;
}

void setBinaryOutput() {
  _setmode(static_cast<int>(StandardStream::output), _O_BINARY);
  _setmode(static_cast<int>(StandardStream::error), _O_BINARY);
}

}  // namespace plumetta
