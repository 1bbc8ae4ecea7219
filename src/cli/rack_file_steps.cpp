// SPDX-License-Identifier: GPL-3.0-or-later
// The steps that load and save the rack, and programs of its plug-ins.
#include "app/plugin_library.h"
#include "cli/edit_steps.h"
#include "platform/paths.h"
#include "vst/chain_file.h"

namespace plumetta {
namespace {

StepOutcome doneIf(bool done) { return done ? StepOutcome::done : StepOutcome::refused; }

// -1, which is nowhere, for what is none.
int positionOf(const StepArguments& arguments) {
  const int64_t position = std::get<int64_t>(arguments[0]);
  return position >= 0 && position < Rack::kPositions ? static_cast<int>(position) : -1;
}

std::string pathOf(const StepArguments& arguments, size_t i) {
  return absolutePath(std::get<std::string>(arguments[i]));
}

StepOutcome load(EditSession& session, const StepArguments& arguments) {
  return doneIf(loadChainFile(session.app, pathOf(arguments, 0), UnknownLibraries::tell));
}

StepOutcome save(EditSession& session, const StepArguments& arguments) {
  const std::string path = pathOf(arguments, 0);
  const std::error_code error = saveChain(session.app.files(), session.app.rack(), path);
  if (!error) return StepOutcome::done;
  session.app.prompter().message("Unable to write " + path + "\n" + error.message());
  return StepOutcome::fileError;
}

StepOutcome outcomeOf(ProgramOutcome outcome) {
  if (outcome == ProgramOutcome::fileError) return StepOutcome::fileError;
  return doneIf(outcome == ProgramOutcome::done);
}

template <ProgramFileKind kKind>
StepOutcome loadProgram(EditSession& session, const StepArguments& arguments) {
  return outcomeOf(loadProgramFile(session.app, positionOf(arguments), kKind, pathOf(arguments, 1)));
}

template <ProgramFileKind kKind>
StepOutcome saveProgram(EditSession& session, const StepArguments& arguments) {
  return outcomeOf(saveProgramFile(session.app, positionOf(arguments), kKind, pathOf(arguments, 1)));
}

Parameter position() { return {"pos", "", "", ParameterType::integer, true, int64_t{0}, 0, 0, ""}; }
Parameter file(const char* key) { return {key, "", "", ParameterType::text, true, std::string{}, 0, 0, ""}; }

}  // namespace

std::vector<EditStep> rackFileSteps() {
  using enum ProgramFileKind;
  return {
      {"rack-load", {file("file.sor")}, false, load, nullptr},
      {"rack-save", {file("file.sor")}, false, save, nullptr},
      {"preset-load", {position(), file("file.fxp")}, false, loadProgram<program>, nullptr},
      {"preset-save", {position(), file("file.fxp")}, false, saveProgram<program>, nullptr},
      {"bank-load", {position(), file("file.fxb")}, false, loadProgram<bank>, nullptr},
      {"bank-save", {position(), file("file.fxb")}, false, saveProgram<bank>, nullptr},
  };
}

}  // namespace plumetta
