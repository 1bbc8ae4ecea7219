// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "doc/command.h"

namespace plumetta {

// The rows of the command table, by subject. Each group lives in a file of its own.
std::vector<Command> editCommands();         // clipboard, trim, delete, insert silence, undo, redo
std::vector<Command> mixCommands();          // paste and mix
std::vector<Command> quickEffectCommands();  // the 34 one-click effects
std::vector<Command> levelCommands();        // normalize, volume, truncate, bit depth
std::vector<Command> filterCommands();       // the five filters
std::vector<Command> resampleCommands();     // sample rate and pitch
std::vector<Command> channelCommands();      // the 16 channel operations
std::vector<Command> markerCommands();       // markers, loops and regions
std::vector<Command> envelopeCommands();     // volume envelope points
std::vector<Command> silenceCommands();      // what a level parts from silence
std::vector<Command> synthesisCommands();    // test signals
std::vector<Command> rhythmCommands();       // what runs in beats: gapper, markers by tempo
std::vector<Command> sampleCommands();       // single samples
std::vector<Command> rackCommands();         // the chain of plug-ins

// Kinds of undo step and history names for rows.
template <UndoKind kind>
std::optional<UndoKind> undoAs(CommandCall&) {
  return kind;
}
template <int effectNumber>
std::string effectName(CommandCall&);

// A history name or message with its numbers, at most 95 bytes.
template <class... Values>
std::string formatted(const char* format, Values... values) {
  char text[96];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

inline constexpr const char* kNoMemory = "There is not enough memory for this.";

// A check: refuses, without a text, in an empty document.
std::optional<Refusal> needAudio(CommandCall& call);
// Adds markers where none stands yet, in the order given; refused when there would be more than anyone can
// use.
std::optional<Refusal> addMarkers(CWave& wave, const std::vector<int32_t>& positions);
inline constexpr int64_t kMostMarkersAtOnce = 100000;
// The clipboard buffer has another layout than the document.
Refusal clipboardMismatch(const CWave& clipboard);

// A parameter that stands by its place.
Parameter positionalFrame(const char* key, const char* label);
Parameter positionalInteger(const char* key, const char* label, double minimum, double maximum);
Parameter positionalReal(const char* key, const char* label, const char* unit, double minimum,
                         double maximum);

}  // namespace plumetta

#include "doc/effect_names.h"

namespace plumetta {

template <int effectNumber>
std::string effectName(CommandCall&) {
  return EffectNames[effectNumber];
}

}  // namespace plumetta
