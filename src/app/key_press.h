// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace plumetta {

// A key with what is held down beside it.
struct KeyPress {
  bool ctrl = false, alt = false, shift = false;
  // A capital letter, digit or other sign of one byte, "F1" to "F24", or one of the named keys ("Space",
  // "Home", "KP_Add").
  std::string key;

  bool operator==(const KeyPress&) const = default;
};

// "Ctrl+Shift+T", in any order of what is held down, whatever the case; nothing when it is no such text.
std::optional<KeyPress> parseKeyPress(std::string_view text);
// In the one spelling that is stored, shown and compared.
std::string keyPressText(const KeyPress& press);
// Why no action but the one whose default it is can have this key, as a sentence; empty when any can.
std::string reservedFor(const KeyPress& press);

}  // namespace plumetta
