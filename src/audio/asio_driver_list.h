// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/asio_system.h"

namespace plumetta {

struct AsioDriverEntry {
  AsioClassId classId;
  std::string path;  // of its library
  std::string name;  // for people
};

// The drivers that the registry names and whose libraries are there. A driver's index is its place.
std::vector<AsioDriverEntry> listAsioDrivers(AsioSystem& system);

// "{8-4-4-4-12}" hexadecimal digits.
std::optional<AsioClassId> parseAsioClassId(const std::string& text);

}  // namespace plumetta
