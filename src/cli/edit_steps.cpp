// SPDX-License-Identifier: GPL-3.0-or-later
// The steps that are no commands of a document: files, the selection, and what prints.
#include "cli/edit_steps.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include "cli/document_json.h"
#include "doc/effect_names.h"
#include "doc/selection_tempo.h"
#include "doc/take_import.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

std::string pathOf(const StepArguments& arguments, size_t i) {
  return absolutePath(std::get<std::string>(arguments[i]));
}

int64_t integerOf(const StepArguments& arguments, size_t i) { return std::get<int64_t>(arguments[i]); }

int64_t framesOf(const StepArguments& arguments, size_t i, uint32_t rate) {
  return std::get<FrameOrTime>(arguments[i]).frames(rate);
}

int64_t framesOf(const EditSession& session, const StepArguments& arguments, size_t i) {
  return framesOf(arguments, i, session.doc->wave().sampleRate());
}

// ---- Files ----------------------------------------------------------------------------------------------

StepOutcome makeNew(EditSession& session, const StepArguments& arguments) {
  constexpr int64_t kMaxRate = 0xFFFFFFFF;
  const int64_t rate = integerOf(arguments, 0);
  if (rate < 1 || rate > kMaxRate) return StepOutcome::refused;
  const auto small = [&](size_t i) {
    return static_cast<int>(std::clamp<int64_t>(integerOf(arguments, i), -1, 65535));
  };
  const int tag = small(4);
  const auto sampleRate = static_cast<uint32_t>(rate);
  CPlumettaDoc* made =
      session.app.newDocument(sampleRate, small(1), small(2), framesOf(arguments, 3, sampleRate),
                              static_cast<uint16_t>(tag < 0 ? 0 : tag));
  if (made == nullptr) return StepOutcome::refused;
  session.doc = made;
  return StepOutcome::done;
}

StepOutcome makeCurrent(EditSession& session, const StepArguments& arguments) {
  const int64_t index = integerOf(arguments, 0);
  const auto& documents = session.app.documents();
  if (index < 0 || index >= static_cast<int64_t>(documents.size())) return StepOutcome::refused;
  session.doc = documents[static_cast<size_t>(index)].get();
  return StepOutcome::done;
}

constexpr int64_t kLargestBitRate = 1000000;  // far beyond any format's: the writer makes something of it

StepOutcome save(EditSession& session, const StepArguments& arguments) {
  SaveOptions options;
  options.bitRateKbits = static_cast<int>(std::clamp<int64_t>(integerOf(arguments, 1), 0, kLargestBitRate));
  return outcomeOf(session.doc->save(pathOf(arguments, 0), options));
}

StepOutcome saveRange(EditSession& session, const StepArguments& arguments) {
  const int64_t from = framesOf(session, arguments, 0);
  const int64_t to = framesOf(session, arguments, 1);
  const int64_t frames = session.doc->wave().frames();
  if (from < 0 || to < 0 || from >= frames || to >= frames) return StepOutcome::refused;
  return outcomeOf(
      session.doc->saveRange(static_cast<int32_t>(from), static_cast<int32_t>(to), pathOf(arguments, 2)));
}

StepOutcome split(EditSession& session, const StepArguments& arguments) {
  return outcomeOf(session.doc->split(pathOf(arguments, 0)));
}

StepOutcome exportText(EditSession& session, const StepArguments& arguments) {
  return outcomeOf(session.doc->exportText(pathOf(arguments, 0)));
}

StepOutcome importRaw(EditSession& session, const StepArguments& arguments) {
  constexpr int64_t kOneMore = kMaxChannels + 1;  // no number of channels, and no reason to open the file
  const auto channels = static_cast<int>(std::clamp<int64_t>(integerOf(arguments, 1), 0, kOneMore));
  const TakeImport take{pathOf(arguments, 0), channels, std::get<FrameOrTime>(arguments[2])};
  if (channels == 0 || channels == kOneMore) return StepOutcome::refused;
  std::string reason;
  if (framesOfTake(session.app.files(), take.path, channels, reason) < 0) {
    session.app.prompter().message("Unable to open " + take.path + "\n" + reason);
    return StepOutcome::fileError;
  }
  return importTake(*session.doc, take) == CommandOutcome::done ? StepOutcome::done : StepOutcome::refused;
}

StepOutcome dump(EditSession& session, const StepArguments& arguments) {
  return outcomeOf(session.doc->dumpFloats(pathOf(arguments, 0)));
}

// ---- Selection, cursor, channels ------------------------------------------------------------------------

StepOutcome select(EditSession& session, const StepArguments& arguments) {
  session.doc->select(framesOf(session, arguments, 0), framesOf(session, arguments, 1));
  return StepOutcome::done;
}

StepOutcome selectAll(EditSession& session, const StepArguments&) {
  session.doc->select(0, session.doc->lastFrame());
  return StepOutcome::done;
}

StepOutcome selectNone(EditSession& session, const StepArguments&) {
  session.doc->selectNone();
  return StepOutcome::done;
}

StepOutcome cursor(EditSession& session, const StepArguments& arguments) {
  session.doc->setCursor(framesOf(session, arguments, 0));
  return StepOutcome::done;
}

struct ActiveOption {
  const char* key;
  ActiveOperation operation;
};
constexpr ActiveOption kActiveOptions[] = {
    {"solo", ActiveOperation::solo},
    {"off", ActiveOperation::off},
    {"on", ActiveOperation::on},
    {"toggle", ActiveOperation::toggle},
};
constexpr int64_t kNotGiven = -1;

std::vector<Parameter> activeParameters() {
  std::vector<Parameter> parameters;
  for (const ActiveOption& option : kActiveOptions) {
    parameters.push_back({option.key, "", "", ParameterType::integer, false, kNotGiven, 0, 0, ""});
  }
  return parameters;
}

StepOutcome setActive(EditSession& session, const StepArguments& arguments) {
  const CWave& wave = session.doc->wave();
  for (size_t i = 0; i < std::size(kActiveOptions); ++i) {
    const int64_t channel = integerOf(arguments, i);
    if (channel == kNotGiven) continue;
    if (channel < 0 || channel >= wave.channels()) return StepOutcome::refused;
    session.doc->setActive(kActiveOptions[i].operation, static_cast<int>(channel));
  }
  return StepOutcome::done;
}

StepOutcome activeAll(EditSession& session, const StepArguments&) {
  session.doc->setActive(ActiveOperation::all, 0);
  return StepOutcome::done;
}

StepOutcome selectMarker(EditSession& session, const StepArguments& arguments) {
  const int64_t index = integerOf(arguments, 0);
  if (index < 0 || index >= session.doc->wave().markers.count()) return StepOutcome::refused;
  session.doc->selectedMarker = static_cast<int>(index);
  return StepOutcome::done;
}

// ---- Families of commands -------------------------------------------------------------------------------

StepOutcome runFamily(EditSession& session, const char* family, int64_t number, Arguments arguments) {
  const Command* command = findCommand(family + std::to_string(number));
  if (command == nullptr) return StepOutcome::refused;
  const bool done = runCommand(*session.doc, *command, std::move(arguments)) == CommandOutcome::done;
  return done ? StepOutcome::done : StepOutcome::refused;
}

// By number, or by the name that it leaves in the history.
std::optional<int64_t> quickEffectNumber(const std::string& word) {
  constexpr int kQuickEffects = 34;
  for (int i = 0; i < kQuickEffects; ++i) {
    if (word == std::to_string(i) || word == EffectNames[static_cast<size_t>(i)]) return i;
  }
  return std::nullopt;
}

constexpr const char* kNoSuchOne = "there is no such one";

std::string quickEffectFault(const StepArguments& arguments) {
  return quickEffectNumber(std::get<std::string>(arguments[0])) ? "" : kNoSuchOne;
}

StepOutcome quick(EditSession& session, const StepArguments& arguments) {
  return runFamily(session, "quick-", *quickEffectNumber(std::get<std::string>(arguments[0])), {});
}

std::string channelOperationFault(const StepArguments& arguments) {
  return findCommand("channel-" + std::to_string(integerOf(arguments, 0))) != nullptr ? "" : kNoSuchOne;
}

StepOutcome channel(EditSession& session, const StepArguments& arguments) {
  return runFamily(session, "channel-", integerOf(arguments, 0), {arguments[1]});
}

StepOutcome pasteNew(EditSession& session, const StepArguments&) {
  CPlumettaDoc* pasted = session.app.pasteAsNewDocument();
  if (pasted == nullptr) return StepOutcome::refused;
  session.doc = pasted;
  return StepOutcome::done;
}

// ---- What prints ----------------------------------------------------------------------------------------

StepOutcome printState(EditSession& session, const StepArguments&) {
  session.output += documentJson(*session.doc, session.app) + "\n";
  return StepOutcome::done;
}

StepOutcome printSamples(EditSession& session, const StepArguments& arguments) {
  const CWave& wave = session.doc->wave();
  if (wave.frames() == 0) return StepOutcome::done;
  const int32_t a = session.doc->clampFrame(framesOf(session, arguments, 0));
  const int32_t b = session.doc->clampFrame(framesOf(session, arguments, 1));
  for (int32_t frame = std::min(a, b); frame <= std::max(a, b); ++frame) {
    for (int channel = 0; channel < wave.channels(); ++channel) {
      char text[40];
      std::snprintf(text, sizeof text, "%s%.9g", channel == 0 ? "" : "\t",
                    static_cast<double>(wave.sample(frame, channel)));
      session.output += text;
    }
    session.output += '\n';
  }
  return StepOutcome::done;
}

StepOutcome printStatistics(EditSession& session, const StepArguments& arguments) {
  session.output += session.doc->statistics(std::get<bool>(arguments[0]));
  return StepOutcome::done;
}

StepOutcome printTempo(EditSession& session, const StepArguments& arguments) {
  const double beats = std::get<double>(arguments[0]);
  if (const std::string problem = tempoProblem(*session.doc, beats); !problem.empty()) {
    session.app.prompter().message(problem);
    return StepOutcome::refused;
  }
  char text[40];
  std::snprintf(text, sizeof text, "%.9g\n", tempoOfSelection(*session.doc, beats));
  session.output += text;
  return StepOutcome::done;
}

StepOutcome printHistory(EditSession& session, const StepArguments&) {
  for (const std::string& name : session.app.history().names()) session.output += name + "\n";
  return StepOutcome::done;
}

// ---- The table ------------------------------------------------------------------------------------------

Parameter positional(const char* key, ParameterType type, ParameterValue fallback) {
  return {key, "", "", type, true, std::move(fallback), 0, 0, ""};
}
Parameter file() { return positional("file", ParameterType::text, std::string{}); }
Parameter integer(const char* key) { return positional(key, ParameterType::integer, int64_t{0}); }
Parameter frame(const char* key) { return positional(key, ParameterType::frame, FrameOrTime{}); }

std::vector<EditStep> ownSteps() {
  const Parameter tag{"tag", "", "", ParameterType::integer, false, int64_t{kFormatPcm}, 0, 0, ""};
  const Parameter index{"index", "", "", ParameterType::integer, false, int64_t{0}, 0, 0, ""};
  const Parameter bitRate{
      "bitrate", "", "", ParameterType::integer, false, int64_t{SaveOptions{}.bitRateKbits}, 0, 0, ""};
  const Parameter levels{"levels", "", "", ParameterType::boolean, false, true, 0, 0, ""};
  return {
      openStep(),
      openUrlStep(),
      {"new",
       {integer("rate"), integer("channels"), integer("bits"), frame("frames"), tag},
       false,
       makeNew,
       nullptr},
      {"doc", {integer("n")}, false, makeCurrent, nullptr},
      {"save", {file(), bitRate}, true, save, nullptr},
      {"save-range", {frame("from"), frame("to"), file()}, true, saveRange, nullptr},
      {"split", {positional("prefix", ParameterType::text, std::string{})}, true, split, nullptr},
      {"export-text", {file()}, true, exportText, nullptr},
      {"dump", {file()}, true, dump, nullptr},
      {"import-raw", {file(), integer("channels"), frame("at")}, true, importRaw, nullptr},
      {"select", {frame("from"), frame("to")}, true, select, nullptr},
      {"select-all", {}, true, selectAll, nullptr},
      {"select-none", {}, true, selectNone, nullptr},
      {"cursor", {frame("frame")}, true, cursor, nullptr},
      {"active all", {}, true, activeAll, nullptr},
      {"active", activeParameters(), true, setActive, nullptr},
      {"marker-select", {integer("i")}, true, selectMarker, nullptr},
      {"paste-new", {}, false, pasteNew, nullptr},
      {"quick",
       {positional("n", ParameterType::text, std::string{})},
       true,
       quick,
       nullptr,
       quickEffectFault},
      {"channel", {integer("op"), index}, true, channel, nullptr, channelOperationFault},
      bounceStep(),
      {"stats", {levels}, true, printStatistics, nullptr},
      {"state", {}, true, printState, nullptr},
      {"print", {frame("from"), frame("to")}, true, printSamples, nullptr},
      {"bpm", {positional("beats", ParameterType::real, 0.0)}, true, printTempo, nullptr},
      {"history", {}, false, printHistory, nullptr},
  };
}

}  // namespace

const std::vector<EditStep>& editSteps() {
  static const std::vector<EditStep> steps = [] {
    std::vector<EditStep> all = ownSteps();
    for (EditStep& step : rackSteps()) all.push_back(std::move(step));
    for (EditStep& step : rackFileSteps()) all.push_back(std::move(step));
    for (const Command& command : commandTable()) {
      // These are the steps `quick` and `channel`, which take the number as an argument.
      const std::string_view id = command.id;
      if (id.starts_with("quick-") || id.starts_with("channel-")) continue;
      all.push_back({command.id, command.parameters, true, nullptr, &command});
    }
    return all;
  }();
  return steps;
}

StepOutcome outcomeOf(FileOutcome outcome) {
  switch (outcome) {
    case FileOutcome::done:
      return StepOutcome::done;
    case FileOutcome::fileError:
      return StepOutcome::fileError;
    case FileOutcome::refused:
    case FileOutcome::cancelled:
      break;
  }
  return StepOutcome::refused;
}

StepOutcome runStep(EditSession& session, const EditStep& step, const StepArguments& arguments) {
  if (step.needsDocument && session.doc == nullptr) {
    session.app.prompter().message("No document is open");
    return StepOutcome::refused;
  }
  if (step.command == nullptr) return step.run(session, arguments);
  return runCommand(*session.doc, *step.command, arguments) == CommandOutcome::done ? StepOutcome::done
                                                                                    : StepOutcome::refused;
}

}  // namespace plumetta
