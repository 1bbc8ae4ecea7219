// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace plumetta {

// Bytes that can be had without pushing the machine into trouble; a bound, not a promise.
size_t availableMemoryBytes();

}  // namespace plumetta
