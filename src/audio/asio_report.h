// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "audio/asio_session.h"

namespace plumetta {

// The test report: a line for each figure, then one for each channel that got buffers. Lines end in "\n".
std::string asioReport(const AsioDriverInfo& info);

}  // namespace plumetta
