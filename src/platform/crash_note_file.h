// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

inline constexpr const char* kCrashNoteName = "plumetta.crash";

}  // namespace plumetta
