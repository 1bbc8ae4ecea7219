// SPDX-License-Identifier: GPL-3.0-or-later
// Markers, loop points and the regions between markers.
#include <algorithm>
#include <random>

#include "core/regions.h"
#include "doc/command_groups.h"
#include "dsp/onsets.h"

namespace plumetta {
namespace {

using Changes = Command::Changes;
using Lock = Command::Lock;

constexpr int kMaxScrambles = 1000000;

Parameter labelParameter() {
  return {"label", "Label", "", ParameterType::text, false, std::string{}, 0, 0, ""};
}

Parameter markerIndex() { return positionalInteger("index", "Marker", 0, kMaxFrames); }

std::optional<Refusal> checkMarkerIndex(CommandCall& call) {
  if (call.integer(0) >= call.doc.wave().markers.count()) return Refusal{};
  return std::nullopt;
}

// A frame inside the file is asked for; what lies beyond the end is brought back to it later.
std::optional<Refusal> checkFrame(CommandCall& call, size_t argument) {
  if (call.doc.wave().frames() == 0 || call.frames(argument) < 0) return Refusal{};
  return std::nullopt;
}

// ---- Markers --------------------------------------------------------------------------------------------

std::optional<Refusal> runMarker(CommandCall& call) {
  const std::string& label = call.text(1);
  call.doc.wave().markers.add(call.doc.clampFrame(call.frames(0)),
                              label.empty() ? std::nullopt : std::optional(label));
  return std::nullopt;
}

std::optional<Refusal> checkMarkerMove(CommandCall& call) {
  const auto refusal = checkMarkerIndex(call);
  return refusal ? refusal : checkFrame(call, 1);
}

std::optional<Refusal> runMarkerMove(CommandCall& call) {
  call.doc.wave().markers.setPosition(static_cast<int>(call.integer(0)), call.doc.clampFrame(call.frames(1)));
  return std::nullopt;
}

std::optional<Refusal> runMarkerLabel(CommandCall& call) {
  const std::string& label = call.text(1);
  call.doc.wave().markers.setLabel(static_cast<int>(call.integer(0)),
                                   label.empty() ? std::nullopt : std::optional(label));
  return std::nullopt;
}

std::optional<Refusal> runMarkerDelete(CommandCall& call) {
  call.doc.wave().markers.remove(static_cast<int>(call.integer(0)));
  call.doc.selectedMarker.reset();
  return std::nullopt;
}

std::optional<Refusal> runMarkerClear(CommandCall& call) {
  call.doc.wave().markers.clear();
  call.doc.selectedMarker.reset();
  return std::nullopt;
}

std::optional<Refusal> needSelection(CommandCall& call) {
  if (!call.doc.view().hasSelection()) return Refusal{"Create selection first"};
  return std::nullopt;
}

std::optional<Refusal> runMarkSelection(CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrPoint();
  call.doc.wave().markers.add(first);
  call.doc.wave().markers.add(last);
  return std::nullopt;
}

// Adds markers where none stands yet.
void addMarkers(CWave& wave, const std::vector<int32_t>& positions) {
  for (const int32_t position : positions) {
    const bool marked = std::any_of(wave.markers.begin(), wave.markers.end(),
                                    [&](const Marker& marker) { return marker.position == position; });
    if (!marked) wave.markers.add(position);
  }
}

// The lines that part the selection, or the file, into equal stretches, its start included.
std::optional<Refusal> runMarkerGrid(CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrAll();
  const int64_t lines = call.integer(0);
  const int64_t length = static_cast<int64_t>(last) - first + 1;
  std::vector<int32_t> positions;
  for (int64_t line = 0; line < lines; ++line) {
    positions.push_back(static_cast<int32_t>(first + length * line / lines));
  }
  addMarkers(call.doc.wave(), positions);
  return std::nullopt;
}

std::optional<Refusal> runAutoSlice(CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrAll();
  addMarkers(call.doc.wave(), findOnsets(call.doc.wave(), {first, last}, call.real(0)));
  return std::nullopt;
}

// ---- Loops ----------------------------------------------------------------------------------------------

std::optional<Refusal> checkLoop(CommandCall& call) {
  const auto refusal = checkFrame(call, 0);
  return refusal ? refusal : checkFrame(call, 1);
}

std::optional<Refusal> runLoop(CommandCall& call) {
  call.doc.wave().loops.setLoop(call.doc.clampFrame(call.frames(0)), call.doc.clampFrame(call.frames(1)));
  return std::nullopt;
}

std::optional<Refusal> runLoopOfSelection(CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrPoint();
  call.doc.wave().loops.setLoop(first, last);
  return std::nullopt;
}

std::optional<Refusal> runLoopClear(CommandCall& call) {
  call.doc.wave().loops.clear();
  return std::nullopt;
}

// ---- Regions --------------------------------------------------------------------------------------------

std::optional<Refusal> checkSwap(CommandCall& call) {
  for (const size_t argument : {0u, 1u}) {
    if (call.frames(argument) < 0 || call.frames(argument) >= call.doc.wave().frames()) return Refusal{};
  }
  return std::nullopt;
}

std::optional<Refusal> runSwap(CommandCall& call) {
  swapRegions(call.doc.wave(), static_cast<int32_t>(call.frames(0)), static_cast<int32_t>(call.frames(1)));
  return std::nullopt;
}

std::optional<Refusal> needMarkers(CommandCall& call) {
  if (call.doc.wave().markers.empty()) return Refusal{"Create marker/region first"};
  return std::nullopt;
}

std::optional<Refusal> runScramble(CommandCall& call) {
  std::mt19937 random(std::random_device{}());
  scrambleRegions(call.doc.wave(), static_cast<int>(call.integer(0)), [&] { return random(); });
  return std::nullopt;
}

}  // namespace

std::vector<Command> markerCommands() {
  constexpr auto annotations = undoAs<UndoKind::annotations>;
  const Parameter gridLines{"lines",
                            "Lines",
                            "",
                            ParameterType::integer,
                            true,
                            int64_t{8},
                            1,
                            1024,
                            "The number of lines must lie between 1 and 1024"};
  const Parameter rise{"rise",
                       "Rise of a new sound",
                       "dB",
                       ParameterType::real,
                       false,
                       9.0,
                       1,
                       60,
                       "The rise must lie between 1 and 60 dB"};
  // clang-format off
  return {
      {"marker", "", "", Menu::marker, {positionalFrame("frame", "Position"), labelParameter()},
       [](CommandCall& call) { return checkFrame(call, 0); }, annotations, Lock::none, runMarker,
       effectName<effect::kMarkerCreated>, Changes::annotations},
      {"marker-move", "", "", Menu::none, {markerIndex(), positionalFrame("frame", "Position")},
       checkMarkerMove, annotations, Lock::none, runMarkerMove,
       [](CommandCall&) -> std::string { return "Marker moved"; }, Changes::annotations},
      {"marker-label", "", "", Menu::none, {markerIndex(), labelParameter()}, checkMarkerIndex, annotations,
       Lock::none, runMarkerLabel, [](CommandCall&) -> std::string { return "Marker renamed"; },
       Changes::annotations},
      {"marker-delete", "", "", Menu::none, {markerIndex()}, checkMarkerIndex, annotations, Lock::none,
       runMarkerDelete, effectName<effect::kMarkerDeleted>, Changes::annotations},
      {"marker-selection", "Mark &selection", "Ctrl+M", Menu::marker, {}, needSelection, annotations, Lock::none,
       runMarkSelection, effectName<effect::kSelectionMarked>, Changes::annotations},
      {"marker-grid", "Mark &grid lines", "", Menu::marker, {gridLines}, needAudio, annotations, Lock::none,
       runMarkerGrid, effectName<effect::kMarkerGrid>, Changes::annotations, 0, "Marker grid"},
      {"auto-slice", "&Auto slice region", "", Menu::marker, {rise}, needAudio, annotations, Lock::none,
       runAutoSlice, effectName<effect::kAutoSlice>, Changes::annotations, 0, "Auto slice"},
      {"marker-clear", "&Remove all markers", "", Menu::marker, {}, nullptr, annotations, Lock::none,
       runMarkerClear, effectName<effect::kMarkersCleared>, Changes::annotations},
      {"loop", "", "", Menu::none, {positionalFrame("from", "Start"), positionalFrame("to", "End")}, checkLoop,
       annotations, Lock::none, runLoop, effectName<effect::kLoopCreated>, Changes::annotations},
      {"loop-selection", "&Loop from selection", "Ctrl+L", Menu::loop, {}, needSelection, annotations, Lock::none,
       runLoopOfSelection, effectName<effect::kLoopCreated>, Changes::annotations},
      {"loop-clear", "&Remove loop", "", Menu::loop, {}, nullptr, annotations, Lock::none, runLoopClear,
       effectName<effect::kLoopsCleared>, Changes::annotations},
      {"swap-regions", "", "", Menu::none,
       {positionalFrame("a", "First region"), positionalFrame("b", "Second region")}, checkSwap,
       undoAs<UndoKind::layout>, Lock::throughout, runSwap, [](CommandCall&) -> std::string { return "Swap region"; },
       Changes::samples},
      {"scramble", "", "", Menu::none, {positionalInteger("count", "Exchanges", -kMaxScrambles, kMaxScrambles)},
       needMarkers, undoAs<UndoKind::layout>, Lock::throughout, runScramble,
       [](CommandCall&) -> std::string { return "Scramble region"; }, Changes::samples},
  };
  // clang-format on
}

}  // namespace plumetta
