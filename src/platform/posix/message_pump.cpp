// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/message_pump.h"

namespace plumetta {

void dispatchWaitingMessages() {}

}  // namespace plumetta
