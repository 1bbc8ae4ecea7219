// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "core/undo.h"
#include "doc/document.h"

namespace plumetta {

// ---- Parameters -----------------------------------------------------------------------------------------

enum class ParameterType { boolean, integer, real, text, frame };

// A position or length: frames, or seconds that become frames at the document's rate, rounded to nearest.
struct FrameOrTime {
  double value = 0;
  bool inSeconds = false;

  int64_t frames(uint32_t sampleRate) const;
};

using ParameterValue = std::variant<bool, int64_t, double, std::string, FrameOrTime>;

// One value of a parameter that has few, as a dialog offers it.
struct ParameterChoice {
  int64_t value;
  std::string label;
};

// What a command asks for: once, for dialogs, stored values and steps of the command line alike.
struct Parameter {
  const char* key;    // name in a call ("label=...")
  const char* label;  // in a dialog
  const char* unit;   // "" for none
  ParameterType type;
  bool positional;  // stands by its place in a call; else it is optional and given as key=value
  ParameterValue fallback;
  double minimum;  // of numbers; frames are the command's own business
  double maximum;
  const char* outOfBounds;       // message; "" refuses without one
  const char* settingsKey = "";  // under which a dialog stores it, where that is not `key`
  // The values that a dialog offers for a document; null when it asks for a number.
  std::vector<ParameterChoice> (*choices)(const CPlumettaDoc&) = nullptr;
  // For an integer that a call names by a word: the words for 0, 1 ..., parted by "|"; "" for none.
  const char* words = "";

  const char* storedAs() const { return *settingsKey != '\0' ? settingsKey : key; }
};

using Arguments = std::vector<ParameterValue>;

// ---- Commands -------------------------------------------------------------------------------------------

class CommandCall;

// Why a command was not carried out; without text when the system has none for it.
struct Refusal {
  std::string message;
  bool ofValues = false;  // other values of the parameters would do: a dialog can still be opened
};

enum class Menu {
  none,
  edit,
  process,
  fade,
  normalize,
  filter,
  pitch,
  generate,
  channel,
  marker,
  loop,
  volume
};

// One command: everything that menus, dialogs, the history and the command line know of it.
struct Command {
  const char* id;        // step of the command line and name for shortcuts
  const char* menuText;  // with its mnemonic; "" for one that no menu shows
  const char* key;       // default shortcut, "" for none
  Menu menu;
  std::vector<Parameter> parameters;

  // Looks whether the command can run, before anything is recorded.
  std::optional<Refusal> (*check)(CommandCall&);
  // What kind of undo step is recorded; none for a command that changes nothing that undo knows.
  std::optional<UndoKind> (*undoKind)(CommandCall&);
  // How it takes the audio lock: not at all (or for a moment, in its own code), in short turns (sample values
  // change), throughout (the length or the layout changes), or by itself, for the moment in which it
  // exchanges the samples for those that it has made beside them; undo then gets the old ones.
  enum class Lock { none, turns, throughout, byItself } lock;
  // Does it. A refusal after the check has left the document as it was, or has set `samplesTouched`: the undo
  // step then brings it back.
  std::optional<Refusal> (*run)(CommandCall&);
  // The line of the history list; empty for none.
  std::string (*historyName)(CommandCall&);
  // Whether the document is a different one afterwards.
  enum class Changes { nothing, annotations, samples } changes;
  // Which one of a family of commands that share their functions: the effect, the channel operation.
  int number = 0;
  // Where its dialog keeps the last values, where that is not `id`.
  const char* settingsSection = "";

  // The gain of a filter with these arguments at a frequency, for its dialog; null for all other commands.
  double (*responseDb)(const CommandCall&, double hz) = nullptr;

  const char* storedIn() const { return *settingsSection != '\0' ? settingsSection : id; }
};

// One run of a command on a document with its arguments.
class CommandCall {
 public:
  CommandCall(CPlumettaDoc& document, const Command& called, Arguments arguments)
      : doc(document), command(called), arguments_(std::move(arguments)) {}

  bool boolean(size_t i) const { return std::get<bool>(arguments_[i]); }
  int64_t integer(size_t i) const { return std::get<int64_t>(arguments_[i]); }
  double real(size_t i) const { return std::get<double>(arguments_[i]); }
  const std::string& text(size_t i) const { return std::get<std::string>(arguments_[i]); }
  int64_t frames(size_t i) const {
    return std::get<FrameOrTime>(arguments_[i]).frames(doc.wave().sampleRate());
  }

  CPlumettaDoc& doc;
  const Command& command;
  bool named = true;            // cleared by a run that leaves no history line
  bool skipped = false;         // set by a check after which nothing happens, and nothing is said
  BlockMemory replacedSamples;  // the document's old block, from a run that has exchanged it
  bool samplesTouched = false;  // set by a run that is refused after it has begun to change samples
  double seconds = 0;           // set by a run whose history name tells a duration

 private:
  Arguments arguments_;
};

enum class CommandOutcome { done, refused };

// The one sequence that every command follows: check, wait cursor, undo step, lock, operation, views,
// history, modified flag. A refused command changes nothing, records nothing and shows its message.
CommandOutcome runCommand(CPlumettaDoc& doc, const Command& command, Arguments arguments);
// With every parameter at its fallback.
CommandOutcome runCommand(CPlumettaDoc& doc, const Command& command);

// Every command, in menu order.
const std::vector<Command>& commandTable();
// Null when there is none of that name.
const Command* findCommand(std::string_view id);
Arguments fallbackArguments(const Command& command);
// Whether a number lies within a parameter's bounds; what is not a number doesn't.
bool withinBounds(const Parameter& parameter, const ParameterValue& value);

}  // namespace plumetta
