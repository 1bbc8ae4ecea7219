// SPDX-License-Identifier: GPL-3.0-or-later
// Commands that part sound from silence by a level.
#include <algorithm>
#include <cmath>

#include "doc/command_groups.h"
#include "dsp/delete_ranges.h"
#include "dsp/silence.h"

namespace plumetta {
namespace {

using Changes = Command::Changes;
using Lock = Command::Lock;

constexpr double kLongestSilence = 86400.0;
constexpr const char* kAllSilent = "Everything lies below this level: nothing would be left";

enum SilenceArgument : size_t { kLevel, kDuration, kMarkerPosition };
enum MarkerPosition : int64_t { kAtStarts = 0, kAtEnds = 1, kAtBoth = 2 };

Parameter levelParameter() {
  return {"db",
          "Silence lies below",
          "dB",
          ParameterType::real,
          true,
          -40.0,
          -200.0,
          200.0,
          "The level must lie between -200 and 200 dB",
          "Level"};
}

Parameter durationParameter(const char* label) {
  return {"seconds",
          label,
          "seconds",
          ParameterType::real,
          true,
          0.25,
          0.0,
          kLongestSilence,
          "The duration must lie between 0 and 86400 seconds",
          "Duration"};
}

std::vector<ParameterChoice> markerPositions(const CPlumettaDoc&) {
  return {{kAtStarts, "At the starts"}, {kAtEnds, "At the ends"}, {kAtBoth, "At both"}};
}

int64_t durationFrames(const CommandCall& call) {
  return std::max<int64_t>(std::llround(call.real(kDuration) * call.doc.wave().sampleRate()), 1);
}

FrameRange rangeOf(const CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrAll();
  return {first, last};
}

std::optional<Refusal> runAutoRegion(CommandCall& call) {
  const int64_t where = call.integer(kMarkerPosition);
  std::vector<int32_t> positions;
  for (const FrameRange& sound :
       findSound(call.doc.wave(), rangeOf(call), call.real(kLevel), durationFrames(call))) {
    if (where != kAtEnds) positions.push_back(sound.first);
    if (where != kAtStarts) positions.push_back(sound.last);
  }
  return addMarkers(call.doc.wave(), positions);
}

// Frames count anew afterwards, so selection, cursor and scroll position start from the beginning.
void removeAndShow(CPlumettaDoc& doc, const std::vector<FrameRange>& ranges) {
  if (ranges.empty()) return;
  {
    const AudioLockHeld held(doc.services().audioLock);
    deleteRanges(doc.wave(), ranges);
  }
  doc.setViewState(ViewState{});
}

std::optional<Refusal> runSilenceRemover(CommandCall& call) {
  CPlumettaDoc& doc = call.doc;
  const FrameRange range = rangeOf(call);
  const int64_t gap = durationFrames(call);
  const auto silence = silenceAround(findSound(doc.wave(), range, call.real(kLevel), gap), range, gap);
  const bool everything = !silence.empty() && silence.front().length() == doc.wave().frames();
  if (everything) return Refusal{kAllSilent};
  removeAndShow(doc, silence);
  return std::nullopt;
}

std::optional<Refusal> runAutoTrim(CommandCall& call) {
  CPlumettaDoc& doc = call.doc;
  const auto silence = silentEnds(doc.wave(), call.real(kLevel));
  if (!silence) return Refusal{kAllSilent};
  removeAndShow(doc, *silence);
  return std::nullopt;
}

}  // namespace

std::vector<Command> silenceCommands() {
  const Parameter position{"position",
                           "Markers",
                           "",
                           ParameterType::integer,
                           false,
                           int64_t{kAtStarts},
                           kAtStarts,
                           kAtBoth,
                           "The position must be 0 (starts), 1 (ends) or 2 (both)",
                           "Position",
                           markerPositions};
  // clang-format off
  return {
      {"auto-region", "Auto &detect region", "", Menu::marker,
       {levelParameter(), durationParameter("Parted by at least"), position}, needAudio, undoAs<UndoKind::annotations>,
       Lock::none, runAutoRegion, [](CommandCall&) -> std::string { return "Auto detect region"; },
       Changes::annotations, 0, "Auto Detect Region"},
      {"silence-remover", "Silen&ce remover", "", Menu::process,
       {levelParameter(), durationParameter("Lasts at least")}, needAudio, undoAs<UndoKind::layout>, Lock::none,
       runSilenceRemover, [](CommandCall&) -> std::string { return "Silence remover"; }, Changes::samples, 0,
       "Silence Remover"},
      {"auto-trim", "&Auto trim", "", Menu::process, {levelParameter()}, needAudio, undoAs<UndoKind::layout>,
       Lock::none, runAutoTrim, [](CommandCall&) -> std::string { return "Auto trim"; }, Changes::samples, 0,
       "Auto Trim"},
  };
  // clang-format on
}

}  // namespace plumetta
