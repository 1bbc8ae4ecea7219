// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli edit`: a chain of steps, parsed whole before the first one runs.
#include <algorithm>

#include "cli/call.h"
#include "cli/edit_steps.h"
#include "cli/terminal_prompter.h"

namespace plumetta {
namespace {

struct ParsedStep {
  const EditStep* step;
  StepArguments arguments;
};

const EditStep* findStep(const std::string& name) {
  const auto& steps = editSteps();
  const auto found = std::find_if(steps.begin(), steps.end(), [&](const auto& s) { return s.name == name; });
  return found == steps.end() ? nullptr : &*found;
}

// "active all" is a step of two words, all others are one.
std::string takeStepName(WordReader& words) {
  std::string name = words.take();
  if (name == "active" && !words.atEnd() && words.peek() == "all") name += " " + words.take();
  return name;
}

std::vector<ParsedStep> parse(WordReader& words) {
  std::vector<ParsedStep> chain;
  while (!words.atEnd() && !words.failed()) {
    const std::string name = takeStepName(words);
    const EditStep* step = findStep(name);
    if (step == nullptr) {
      words.fail("edit: unknown step '" + name + "'");
      break;
    }
    const bool wantsOption =
        name == "active" && (words.atEnd() || words.peek().find('=') == std::string::npos);
    if (wantsOption) words.fail("active: all, solo=C, off=C, on=C or toggle=C is missing");
    ParsedStep parsed{step, {}};
    static_cast<Arguments&>(parsed.arguments) =
        readArguments(words, step->parameters, name, parsed.arguments.given);
    chain.push_back(std::move(parsed));
    if (words.failed() || step->fault == nullptr) continue;
    const std::string fault = step->fault(chain.back().arguments);
    if (!fault.empty()) words.fail(name + ": " + fault);
  }
  if (chain.empty()) words.fail("edit: a step is missing");
  return chain;
}

int statusOf(StepOutcome outcome) {
  switch (outcome) {
    case StepOutcome::done:
      return kAllDone;
    case StepOutcome::refused:
      return kRefused;
    case StepOutcome::fileError:
      return kFileError;
  }
  return kRefused;
}

}  // namespace

int runEdit(const CallOptions& options, WordReader words) {
  const auto chain = parse(words);
  if (words.failed()) return wrongCall(words.error());
  TerminalPrompter prompter(options.answer, options.quiet);
  Application app(prompter, nativeFileSystem(), options.home);
  EditSession session{app, nullptr, {}};
  int status = kAllDone;
  for (const ParsedStep& parsed : chain) {
    status = std::max(status, statusOf(runStep(session, *parsed.step, parsed.arguments)));
    if (!print(session.output)) status = kFileError;
    session.output.clear();
    if (status != kAllDone && !options.keepGoing) break;
  }
  return status;
}

std::string editHelp() {
  std::string text;
  for (const EditStep& step : editSteps()) text += "  " + usageOf(step.name, step.parameters) + "\n";
  return text;
}

}  // namespace plumetta
