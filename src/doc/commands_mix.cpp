// SPDX-License-Identifier: GPL-3.0-or-later
// The clipboard buffer mixed into the audio instead of inserted.
#include <algorithm>

#include "doc/command_groups.h"
#include "dsp/mix.h"

namespace plumetta {
namespace {

using Changes = Command::Changes;
using Lock = Command::Lock;

constexpr int64_t kMostMarkers = 1000000;
constexpr float kMixGain = 1.0f;

std::optional<Refusal> checkMix(CommandCall& call) {
  const CWave* clipboard = call.doc.services().clipboard.get();
  if (clipboard == nullptr) return Refusal{};
  if (clipboard->channels() != call.doc.wave().channels()) return clipboardMismatch(*clipboard);
  if (!canMix(call.doc.wave(), *clipboard, call.doc.view().cursor)) return Refusal{kNoMemory};
  return std::nullopt;
}

std::optional<Refusal> checkMixAtMarkers(CommandCall& call) {
  const CMarkerList& markers = call.doc.wave().markers;
  if (markers.empty()) return Refusal{};
  if (const auto refusal = checkMix(call)) return refusal;
  // Each mix brings the clipboard's own markers along, so their number multiplies.
  const int64_t brought = int64_t{markers.count()} * call.doc.services().clipboard->markers.count();
  if (brought > kMostMarkers) return Refusal{"This would make more than a million markers."};
  return std::nullopt;
}

// The selection tells where the buffer would have been mixed at the cursor; its end may lie beyond the file.
void selectMixed(CPlumettaDoc& doc, int32_t start) {
  const int32_t length = doc.services().clipboard->frames();
  doc.setSelectionExactly(start, length > kMaxFrames - start ? kMaxFrames : start + length);
  doc.setCursor(static_cast<int64_t>(start) + length);
}

std::optional<Refusal> runMix(CommandCall& call) {
  CPlumettaDoc& doc = call.doc;
  const int32_t start = doc.clampFrame(doc.view().cursor);
  if (!mixBuffer(doc.wave(), *doc.services().clipboard, start, kMixGain)) return Refusal{kNoMemory};
  selectMixed(doc, start);
  return std::nullopt;
}

std::optional<Refusal> runMixAtMarkers(CommandCall& call) {
  CPlumettaDoc& doc = call.doc;
  CWave& wave = doc.wave();
  const int32_t cursor = doc.clampFrame(doc.view().cursor);
  std::vector<int32_t> positions;  // mixing adds the clipboard's own markers
  for (const Marker& marker : wave.markers) positions.push_back(marker.position);
  // The room for all of them first, so that none is mixed when one can't be.
  for (const int32_t position : positions) {
    if (!canMix(wave, *doc.services().clipboard, position)) return Refusal{kNoMemory};
  }
  const int32_t furthest = *std::max_element(positions.begin(), positions.end());
  const int64_t end = static_cast<int64_t>(doc.clampFrame(furthest)) + doc.services().clipboard->frames();
  if (end > wave.frames() && !wave.resize(end, wave.channels())) return Refusal{kNoMemory};
  for (const int32_t position : positions) mixBuffer(wave, *doc.services().clipboard, position, kMixGain);
  selectMixed(doc, cursor);
  return std::nullopt;
}

}  // namespace

std::vector<Command> mixCommands() {
  // clang-format off
  return {
      {"paste-mix", "Paste and mi&x", "Ctrl+Shift+V", Menu::edit, {}, checkMix, undoAs<UndoKind::layout>,
       Lock::throughout, runMix, [](CommandCall&) -> std::string { return "Paste and mix"; }, Changes::samples},
      {"paste-mix-markers", "Paste and mix at mar&kers", "", Menu::edit, {}, checkMixAtMarkers,
       undoAs<UndoKind::layout>, Lock::throughout, runMixAtMarkers,
       [](CommandCall&) -> std::string { return "Paste and mix at marker"; }, Changes::samples},
  };
  // clang-format on
}

}  // namespace plumetta
