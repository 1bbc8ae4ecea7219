// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace plumetta {

// What has failed, and below it the system's own words for why, as far as there are any.
inline std::string withReason(const std::string& what, const std::string& reason) {
  return reason.empty() ? what : what + "\n" + reason;
}

}  // namespace plumetta
