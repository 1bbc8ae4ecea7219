// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

enum class StandardStream { input = 0, output = 1, error = 2 };

// Whether a person sits at the other end of the stream.
bool isTerminal(StandardStream stream);
// Makes standard output carry bytes as they are written, with no change of line ends.
void setBinaryOutput();

}  // namespace plumetta
