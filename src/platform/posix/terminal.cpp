// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/terminal.h"

#include <unistd.h>

namespace plumetta {

bool isTerminal(StandardStream stream) { return isatty(static_cast<int>(stream)) == 1; }

void setBinaryOutput() {}

}  // namespace plumetta
