// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/terminal.h"

#include <fcntl.h>
#include <io.h>

namespace plumetta {

bool isTerminal(StandardStream stream) { return _isatty(static_cast<int>(stream)) != 0; }

void setBinaryOutput() {
  _setmode(static_cast<int>(StandardStream::output), _O_BINARY);
  _setmode(static_cast<int>(StandardStream::error), _O_BINARY);
}

}  // namespace plumetta
