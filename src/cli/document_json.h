// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "app/application.h"

namespace plumetta {

// A document's whole state as one line of JSON.
std::string documentJson(const CPlumettaDoc& doc, const Application& app);

}  // namespace plumetta
