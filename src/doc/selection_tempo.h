// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "doc/document.h"

namespace plumetta {

// Why the document has no tempo to calculate, in a sentence; empty when it has.
std::string tempoProblem(const CPlumettaDoc& doc, double beats);

// The tempo, in beats a minute, at which the selection, both its ends counted, lasts so many beats. Only
// without a problem.
double tempoOfSelection(const CPlumettaDoc& doc, double beats);

}  // namespace plumetta
