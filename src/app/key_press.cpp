// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/key_press.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "platform/private_profile.h"

namespace plumetta {
namespace {

constexpr size_t kLongestText = 64;
constexpr int kFunctionKeys = 24;

// The first name is the one that is written, the others are understood: people and toolkits have several.
constexpr std::array<const char*, 3> kNamed[] = {
    {"Space"},
    {"Esc", "Escape"},
    {"Tab"},
    {"Enter", "Return"},
    {"Back", "Backspace"},
    {"Delete", "Del"},
    {"Insert", "Ins"},
    {"Home"},
    {"End"},
    {"PageUp", "PgUp", "Page Up"},
    {"PageDown", "PgDn", "Page Down"},
    {"Left"},
    {"Right"},
    {"Up"},
    {"Down"},
    {"KP_Add", "Num +"},
    {"KP_Subtract", "Num -"},
    {"KP_Multiply", "Num *"},
    {"KP_Divide", "Num /"},
    {"KP_Decimal", "Num ."},
    {"KP_Enter", "Num Enter"},
    {"KP_0"},
    {"KP_1"},
    {"KP_2"},
    {"KP_3"},
    {"KP_4"},
    {"KP_5"},
    {"KP_6"},
    {"KP_7"},
    {"KP_8"},
    {"KP_9"},
};

// Move the cursor in the waveform and the choice in lists, with Shift too.
constexpr const char* kMoving[] = {"Left", "Right", "Up", "Down", "Home", "End", "PageUp", "PageDown"};

bool isPlainSign(char c) { return c > ' ' && c < 0x7F; }

std::string keyNamed(std::string_view text) {
  if (text.size() == 1 && isPlainSign(text[0])) {
    const char c = text[0];
    return std::string(1, c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c);
  }
  for (const auto& names : kNamed) {
    for (const char* name : names) {
      if (name != nullptr && sameProfileName(name, text)) return names[0];
    }
  }
  for (int i = 1; i <= kFunctionKeys; ++i) {
    const std::string name = "F" + std::to_string(i);
    if (sameProfileName(name, text)) return name;
  }
  return {};
}

std::string_view withoutBlanks(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  return text;
}

// What is held down for one word of a text; null for a word that says nothing of the kind.
bool KeyPress::*heldBy(std::string_view word) {
  if (sameProfileName(word, "Ctrl") || sameProfileName(word, "Control")) return &KeyPress::ctrl;
  if (sameProfileName(word, "Alt")) return &KeyPress::alt;
  if (sameProfileName(word, "Shift")) return &KeyPress::shift;
  return nullptr;
}

}  // namespace

std::optional<KeyPress> parseKeyPress(std::string_view text) {
  if (text.size() > kLongestText) return std::nullopt;
  text = withoutBlanks(text);
  KeyPress press;
  // A plus sign can be the key itself, at the end.
  for (size_t plus = text.find('+'); plus != std::string_view::npos && plus + 1 < text.size() && plus > 0;
       plus = text.find('+')) {
    bool KeyPress::*held = heldBy(withoutBlanks(text.substr(0, plus)));
    if (held == nullptr || press.*held) return std::nullopt;
    press.*held = true;
    text = withoutBlanks(text.substr(plus + 1));
  }
  press.key = keyNamed(text);
  return press.key.empty() ? std::nullopt : std::optional(press);
}

std::string keyPressText(const KeyPress& press) {
  return std::string(press.ctrl ? "Ctrl+" : "") + (press.alt ? "Alt+" : "") + (press.shift ? "Shift+" : "") +
         press.key;
}

std::string reservedFor(const KeyPress& press) {
  const bool held = press.ctrl || press.alt;
  if (press.key == "Esc") return "Esc ends what is under way and closes dialogs.";
  if (!held && press.key == "Tab") return "Tab goes from one control to the next.";
  if (!held && press.key == "F6") return "F6 goes from one part of the window to the next.";
  if (!held && (press.key == "Enter" || press.key == "KP_Enter")) return "Enter chooses what has the focus.";
  if (!held && std::ranges::find(kMoving, press.key) != std::end(kMoving)) {
    return "This key moves the cursor in the waveform.";
  }
  const bool letter = press.key.size() == 1 && press.key[0] >= 'A' && press.key[0] <= 'Z';
  if (press.alt && !press.ctrl && !press.shift && letter) return "Alt with a letter opens a menu.";
  if (press.alt && !press.ctrl && press.key == "F4") return "Alt+F4 closes a window.";
  return {};
}

}  // namespace plumetta
