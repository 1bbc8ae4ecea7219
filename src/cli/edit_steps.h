// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "app/application.h"
#include "doc/command.h"

namespace plumetta {

enum class StepOutcome { done, refused, fileError };

// One run of a chain: the application and the document that steps act on.
struct EditSession {
  Application& app;
  CPlumettaDoc* doc = nullptr;  // null until something is opened or made
  std::string output;           // for standard output
};

// The values of a step's parameters, and of which of them the call itself tells.
struct StepArguments : Arguments {
  std::vector<bool> given;
};

// One step of `edit`: its words and what it does. Steps that are commands of the command table carry the row.
struct EditStep {
  std::string name;
  std::vector<Parameter> parameters;
  bool needsDocument;
  StepOutcome (*run)(EditSession& session, const StepArguments& arguments);
  const Command* command;  // set instead of `run`
  // What is wrong with the arguments of a call, whatever the document; empty for nothing. Null where any will
  // do.
  std::string (*fault)(const StepArguments& arguments) = nullptr;
};

// All steps: those of the command line alone, then every row of the command table.
const std::vector<EditStep>& editSteps();

// Opens a file.
EditStep openStep();
// The same from an address.
EditStep openUrlStep();

// Plays the document into a file.
EditStep bounceStep();
// The rack of plug-ins, but for `rack-apply`, which is a command.
std::vector<EditStep> rackSteps();
// Its files.
std::vector<EditStep> rackFileSteps();

StepOutcome outcomeOf(FileOutcome outcome);

StepOutcome runStep(EditSession& session, const EditStep& step, const StepArguments& arguments);

}  // namespace plumetta
