// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "cli/arguments.h"
#include "dsp/strip_spectra.h"

namespace plumetta {

// A window by its index or its name, upper and lower case alike.
std::optional<WindowKind> windowKindIn(const std::string& text);
std::string unknownWindow(const std::string& text);

// Reads what stands behind `--size` and `--window` of the command `what`.
void readSpectrumSize(WordReader& words, const std::string& what, int& size);
void readWindowKind(WordReader& words, const std::string& what, WindowKind& window);
// The one file of a call of `what`: a word that no option has taken and that doesn't look like one.
void readFileWord(WordReader& words, const std::string& what, const std::string& word, std::string& file);

}  // namespace plumetta
