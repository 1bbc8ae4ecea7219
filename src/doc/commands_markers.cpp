// SPDX-License-Identifier: GPL-3.0-or-later
// Markers, loop points and the regions between markers.
#include <algorithm>
#include <random>
#include <set>

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

// The lines that part the selection, or the file, into equal stretches, its start included.
std::optional<Refusal> runMarkerGrid(CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrAll();
  const int64_t lines = call.integer(0);
  const int64_t length = static_cast<int64_t>(last) - first + 1;
  std::vector<int32_t> positions;
  for (int64_t line = 0; line < lines; ++line) {
    positions.push_back(static_cast<int32_t>(first + length * line / lines));
  }
  return addMarkers(call.doc.wave(), positions);
}

std::optional<Refusal> runAutoSlice(CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrAll();
  return addMarkers(call.doc.wave(), findOnsets(call.doc.wave(), {first, last}, call.real(0)));
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

// Markers at the start of each of equal parts, and behind the last one where the file goes on there.
std::optional<Refusal> runSetRegion(CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrAll();
  const int64_t count = call.integer(0);
  const int64_t length = static_cast<int64_t>(last) - first + 1;
  if (count > length) return Refusal{"There are fewer frames than regions", true};
  std::vector<int32_t> positions;
  for (int64_t part = 0; part <= count; ++part) {
    const int64_t start = first + length * part / count;
    if (start < call.doc.wave().frames()) positions.push_back(static_cast<int32_t>(start));
  }
  return addMarkers(call.doc.wave(), positions);
}

}  // namespace

std::optional<Refusal> addMarkers(CWave& wave, const std::vector<int32_t>& positions) {
  if (positions.size() > static_cast<size_t>(kMostMarkersAtOnce)) {
    return Refusal{"That would be more than 100000 markers", true};
  }
  std::set<int32_t> taken;
  for (const Marker& marker : wave.markers) taken.insert(marker.position);
  for (const int32_t position : positions) {
    if (taken.insert(position).second) wave.markers.add(position);
  }
  return std::nullopt;
}

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
  const Parameter exchanges{"count",
                            "Exchanges",
                            "",
                            ParameterType::integer,
                            true,
                            int64_t{10},
                            -kMaxScrambles,
                            kMaxScrambles,
                            "The number of exchanges must lie between -1000000 and 1000000"};
  const Parameter regions{"count",
                          "Regions",
                          "",
                          ParameterType::integer,
                          true,
                          int64_t{8},
                          1,
                          10000,
                          "The number of regions must lie between 1 and 10000",
                          "number"};
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
      {"scramble", "S&cramble region", "", Menu::marker, {exchanges}, needMarkers, undoAs<UndoKind::layout>,
       Lock::throughout, runScramble, [](CommandCall&) -> std::string { return "Scramble region"; },
       Changes::samples, 0, "Scramble region"},
      {"set-region", "Set r&egion", "", Menu::marker, {regions}, needAudio, annotations, Lock::none, runSetRegion,
       [](CommandCall&) -> std::string { return "Set region"; }, Changes::annotations, 0, "Region number"},
  };
  // clang-format on
}

}  // namespace plumetta
