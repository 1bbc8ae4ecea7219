// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/selection_tempo.h"

namespace plumetta {

std::string tempoProblem(const CPlumettaDoc& doc, double beats) {
  constexpr double kMostBeats = 1e6;
  if (!doc.view().hasSelection()) return "Select file part first";
  if (beats > 0 && beats <= kMostBeats) return {};
  return "The number of beats must lie above 0 and not above 1000000";
}

double tempoOfSelection(const CPlumettaDoc& doc, double beats) {
  const auto [first, last] = doc.selectionOrPoint();
  return beats * 60.0 * doc.wave().sampleRate() / (static_cast<double>(last) - first + 1);
}

}  // namespace plumetta
