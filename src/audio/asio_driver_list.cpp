// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/asio_driver_list.h"

#include <algorithm>
#include <charconv>

namespace plumetta {
namespace {

const std::string kDriversKey = "software\\asio";
const std::string kClassesKey = "clsid";

// The longest texts that are taken, in characters.
constexpr size_t kMostClassId = 255;
constexpr size_t kMostPath = 511;
constexpr size_t kMostName = 127;

std::optional<std::string> shortValue(AsioSystem& system, RegistryRoot root, const std::string& key,
                                      const std::string& name, size_t most) {
  std::optional<std::string> text = system.value(root, key, name);
  if (text && (text->empty() || text->size() > most)) text.reset();
  return text;
}

std::optional<AsioDriverEntry> driverOfKey(AsioSystem& system, const std::string& subKey) {
  const std::string key = kDriversKey + "\\" + subKey;
  const auto classText = shortValue(system, RegistryRoot::machine, key, "clsid", kMostClassId);
  if (!classText) return std::nullopt;
  const std::string server = kClassesKey + "\\" + *classText + "\\InprocServer32";
  const auto path = shortValue(system, RegistryRoot::classes, server, "", kMostPath);
  if (!path || !system.fileExists(*path)) return std::nullopt;
  const auto classId = parseAsioClassId(*classText);
  if (!classId) return std::nullopt;
  const auto description = shortValue(system, RegistryRoot::machine, key, "description", kMostName);
  return AsioDriverEntry{*classId, *path, description.value_or(subKey)};
}

uint64_t hexadecimal(std::string_view digits) {
  uint64_t value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  return value;
}

bool isHexadecimal(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

}  // namespace

std::vector<AsioDriverEntry> listAsioDrivers(AsioSystem& system) {
  std::vector<AsioDriverEntry> drivers;
  for (const std::string& subKey : system.subKeys(RegistryRoot::machine, kDriversKey)) {
    if (auto driver = driverOfKey(system, subKey)) drivers.push_back(std::move(*driver));
  }
  return drivers;
}

std::optional<AsioClassId> parseAsioClassId(const std::string& text) {
  constexpr std::string_view kShape = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
  if (text.size() != kShape.size()) return std::nullopt;
  for (size_t i = 0; i < kShape.size(); ++i) {
    if (kShape[i] == 'x' ? !isHexadecimal(text[i]) : text[i] != kShape[i]) return std::nullopt;
  }
  const std::string_view digits(text);
  AsioClassId id;
  id.data1 = static_cast<uint32_t>(hexadecimal(digits.substr(1, 8)));
  id.data2 = static_cast<uint16_t>(hexadecimal(digits.substr(10, 4)));
  id.data3 = static_cast<uint16_t>(hexadecimal(digits.substr(15, 4)));
  for (size_t i = 0; i < 8; ++i) {
    // The fourth group holds two bytes, the last one six.
    const size_t at = (i < 2 ? 20 : 21) + 2 * i;
    id.data4[i] = static_cast<uint8_t>(hexadecimal(digits.substr(at, 2)));
  }
  return id;
}

}  // namespace plumetta
