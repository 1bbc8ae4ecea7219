// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

namespace plumetta {

// Numbers as people type them, whatever the locale: blanks around are ignored, a decimal comma counts as a
// point. Nothing when the text is no finite number.
std::optional<double> parseNumber(std::string text);
// The shortest text that reads back as the same number.
std::string numberText(double value);

}  // namespace plumetta
