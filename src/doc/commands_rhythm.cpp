// SPDX-License-Identifier: GPL-3.0-or-later
// What runs in beats: markers by tempo, and the gate.
#include <cmath>

#include "doc/command_groups.h"
#include "doc/long_work.h"
#include "dsp/gapper.h"

namespace plumetta {
namespace {

using Changes = Command::Changes;
using Lock = Command::Lock;

// ---- Markers by tempo -----------------------------------------------------------------------------------

enum MarkerBpmArgument : size_t { kBpm, kMeasure };

double spacingFrames(const CommandCall& call) {
  return call.real(kMeasure) * 60.0 / call.real(kBpm) * call.doc.wave().sampleRate();
}

std::optional<Refusal> checkMarkerBpm(CommandCall& call) {
  if (const auto refusal = needAudio(call)) return refusal;
  if (spacingFrames(call) < 1) return Refusal{"The markers would stand less than a frame apart", true};
  return std::nullopt;
}

std::optional<Refusal> runMarkerBpm(CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrAll();
  const double spacing = spacingFrames(call);
  std::vector<int32_t> positions;
  // One more than may be is enough to be refused.
  for (int64_t i = 0; i <= kMostMarkersAtOnce; ++i) {
    const double position = first + std::round(static_cast<double>(i) * spacing);
    if (position > last) break;
    positions.push_back(static_cast<int32_t>(position));
  }
  return addMarkers(call.doc.wave(), positions);
}

std::vector<Parameter> markerBpmParameters() {
  return {
      {"bpm", "Tempo", "beats a minute", ParameterType::real, true, 125.0, 0.01, 10000,
       "The tempo must lie between 0.01 and 10000 beats a minute", "BPM"},
      {"measure", "Marker every", "beats", ParameterType::real, false, 1.0, 0.001, 10000,
       "The measure must lie between 0.001 and 10000 beats", "Mesure"},
  };
}

// ---- Gapper ---------------------------------------------------------------------------------------------

enum GapperArgument : size_t { kType, kStart, kStopPresent, kStop, kFadeIn, kFadeOut };

std::vector<ParameterChoice> gateEdges(const CPlumettaDoc&) {
  return {{static_cast<int64_t>(GateEdge::linear), "Linear"},
          {static_cast<int64_t>(GateEdge::sine), "Sine"},
          {static_cast<int64_t>(GateEdge::exponential), "Exponential"},
          {static_cast<int64_t>(GateEdge::square), "Square"}};
}

std::vector<Parameter> gapperParameters() {
  constexpr double kSlowest = 0.01;
  constexpr double kFastest = 1000;
  constexpr const char* kWrongHz = "The frequency must lie between 0.01 and 1000 Hz";
  constexpr const char* kWrongFade = "The fades must lie between 0 and 100 %";
  return {
      {"type", "Shape of the fades", "", ParameterType::integer, false, int64_t{-1}, -1, 2,
       "The type must be -1 (linear), 0 (sine), 1 (exponential) or 2 (square)", "Type", gateEdges},
      {"start", "Frequency", "Hz", ParameterType::real, false, 4.0, kSlowest, kFastest, kWrongHz,
       "Frequency start"},
      {"stop-present", "Changes towards the end", "", ParameterType::boolean, false, false, 0, 1, "",
       "Frequency stop present"},
      {"stop", "Frequency at the end", "Hz", ParameterType::real, false, 8.0, kSlowest, kFastest, kWrongHz,
       "Frequency stop"},
      {"fade-in", "Fade in", "% of each sound", ParameterType::real, false, 10.0, 0, 100, kWrongFade,
       "Purcent fade in"},
      {"fade-out", "Fade out", "% of each sound", ParameterType::real, false, 10.0, 0, 100, kWrongFade,
       "Purcent fade out"},
  };
}

std::optional<Refusal> runGapper(CommandCall& call) {
  Gate gate;
  gate.edge = static_cast<GateEdge>(call.integer(kType));
  gate.startHz = call.real(kStart);
  gate.stopHz = call.boolean(kStopPresent) ? call.real(kStop) : gate.startHz;
  gate.fadeIn = call.real(kFadeIn) / 100;
  gate.fadeOut = call.real(kFadeOut) / 100;
  CWave& wave = call.doc.wave();
  LongWork work(call.doc.prompter(), "Gapper");
  const WaveReports reports(wave, work);
  call.samplesTouched = true;
  return applyGate(wave, gate) ? std::nullopt : std::optional(Refusal{});
}

}  // namespace

std::vector<Command> rhythmCommands() {
  return {
      {"marker-bpm", "Set marker as &BPM", "", Menu::marker, markerBpmParameters(), checkMarkerBpm,
       undoAs<UndoKind::annotations>, Lock::none, runMarkerBpm,
       [](CommandCall&) -> std::string { return "Set marker as bpm"; }, Changes::annotations, 0,
       "Marker BPM"},
      {"gapper", "Gapper", "", Menu::process, gapperParameters(), needAudio, undoAs<UndoKind::wholeFile>,
       Lock::turns, runGapper, [](CommandCall&) -> std::string { return "Gapper effect"; }, Changes::samples,
       0, "Gapper"},
  };
}

}  // namespace plumetta
