// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

#include "dsp/spectrum.h"

namespace plumetta {

// A spectrum as the text of a ".fft" file, a line a spectrum line; the decimal separator is a point whatever
// the locale.
std::string spectrumText(const SpectrumRecord& record);

// Reads such a text, lines of any length. False, with `record` as it was, for another version, without a
// channel or line count, for counts that the text has no room for, and where a value is missing or no finite
// number. Frequencies that the text doesn't tell stay as they are; without a scale factor values are taken
// as they stand.
bool parseSpectrum(std::string_view text, SpectrumRecord& record);

}  // namespace plumetta
