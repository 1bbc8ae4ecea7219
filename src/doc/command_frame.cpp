// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>

#include "doc/command.h"

namespace plumetta {
namespace {

CommandOutcome refuse(CPlumettaDoc& doc, const Refusal& refusal) {
  if (!refusal.message.empty()) doc.prompter().message(refusal.message);
  return CommandOutcome::refused;
}

std::optional<Refusal> boundsRefusal(const Command& command, const Arguments& arguments) {
  for (size_t i = 0; i < command.parameters.size(); ++i) {
    const Parameter& parameter = command.parameters[i];
    if (!withinBounds(parameter, arguments[i])) return Refusal{parameter.outOfBounds};
  }
  return std::nullopt;
}

// Work on sample values gives the lock away in turns; a change of length or layout holds it throughout.
std::optional<Refusal> runUnderLock(CommandCall& call, const Command& command) {
  if (command.lock == Command::Lock::none || command.lock == Command::Lock::byItself)
    return command.run(call);
  AudioLockHeld held(call.doc.services().audioLock);
  CWave& wave = call.doc.wave();
  wave.lock = command.lock == Command::Lock::turns ? &held : nullptr;
  const auto refusal = command.run(call);
  wave.lock = nullptr;
  return refusal;
}

constexpr const char* kNotTakenBack = "The samples from before could not be kept, so the change stays.";

void takeBack(CPlumettaDoc& doc, std::unique_ptr<UndoStep> step) {
  if (step && doc.journal().restore(std::move(step))) return;
  doc.setModified(true);
  doc.prompter().message(kNotTakenBack);
}

void refreshViews(CPlumettaDoc& doc, Command::Changes changes) {
  if (changes == Command::Changes::samples) doc.samplesChanged();
  if (changes == Command::Changes::annotations) doc.annotationsChanged();
}

}  // namespace

int64_t FrameOrTime::frames(uint32_t sampleRate) const {
  const double exact = inSeconds ? std::round(value * sampleRate) : value;
  constexpr double kBeyondAnyFile = 9.0e15;
  if (std::isnan(exact)) return 0;
  return static_cast<int64_t>(std::fmax(-kBeyondAnyFile, std::fmin(exact, kBeyondAnyFile)));
}

bool withinBounds(const Parameter& parameter, const ParameterValue& value) {
  double number = 0;
  if (const auto* integer = std::get_if<int64_t>(&value)) {
    number = static_cast<double>(*integer);
  } else if (const auto* real = std::get_if<double>(&value)) {
    number = *real;
  } else {
    return true;
  }
  return number >= parameter.minimum && number <= parameter.maximum;
}

CommandOutcome runCommand(CPlumettaDoc& doc, const Command& command, Arguments arguments) {
  if (const auto refusal = boundsRefusal(command, arguments)) return refuse(doc, *refusal);
  CommandCall call(doc, command, std::move(arguments));
  const BusyScope busy(doc.prompter());
  if (command.check != nullptr) {
    if (const auto refusal = command.check(call)) return refuse(doc, *refusal);
    if (call.skipped) return CommandOutcome::done;
  }
  std::unique_ptr<UndoStep> step;
  if (const auto kind = command.undoKind != nullptr ? command.undoKind(call) : std::nullopt) {
    doc.journal().setInRam(doc.services().settings.undoInRam ? 1 : 0);
    const bool exchanges = command.lock == Command::Lock::byItself;
    step = exchanges ? doc.journal().makeStepForExchange(*kind) : doc.journal().makeStep(*kind);
  }
  const int markers = doc.wave().markers.count();
  if (const auto refusal = runUnderLock(call, command)) {
    if (call.samplesTouched) takeBack(doc, std::move(step));
    return refuse(doc, *refusal);
  }
  // A marker that was clicked goes by its number, which may mean another one now.
  if (doc.wave().markers.count() < markers) doc.selectedMarker.reset();
  const std::string name = call.named && command.historyName != nullptr ? command.historyName(call) : "";
  if (step) {
    // A document without frames has nothing to hand over, and its step is whole all the same.
    const bool replaced = call.replacedSamples.size() > 0 || step->frames() == 0;
    if (!step->holdsSamples() && step->kind() != UndoKind::annotations && replaced)
      step->adopt(std::move(call.replacedSamples));
    step->setName(name);
    doc.journal().push(std::move(step));
  }
  refreshViews(doc, command.changes);
  if (!name.empty()) doc.services().history.add(name);
  if (command.changes != Command::Changes::nothing) doc.setModified(true);
  return CommandOutcome::done;
}

CommandOutcome runCommand(CPlumettaDoc& doc, const Command& command) {
  return runCommand(doc, command, fallbackArguments(command));
}

Arguments fallbackArguments(const Command& command) {
  Arguments arguments;
  for (const Parameter& parameter : command.parameters) arguments.push_back(parameter.fallback);
  return arguments;
}

}  // namespace plumetta
