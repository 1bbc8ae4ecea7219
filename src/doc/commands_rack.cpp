// SPDX-License-Identifier: GPL-3.0-or-later
// The chain of plug-ins over the selection.
#include "core/block_processor.h"
#include "doc/command_groups.h"
#include "doc/long_work.h"

namespace plumetta {
namespace {

std::optional<Refusal> checkChain(CommandCall& call) {
  const ChainProcessor* chain = call.doc.services().chain;
  if (chain != nullptr && chain->hasActivePlugin()) return std::nullopt;
  return Refusal{kNoActivePlugin};
}

std::optional<UndoKind> chainUndo(CommandCall& call) {
  return call.doc.view().hasSelection() ? UndoKind::selection : UndoKind::wholeFile;
}

// Playing goes on without the plug-ins meanwhile.
std::optional<Refusal> runChain(CommandCall& call) {
  const DocumentServices& services = call.doc.services();
  const ViewState& view = call.doc.view();
  ChainResult result{};
  {
    LongWork work(services.prompter, "Applying the VST chain");
    result = services.chain->applyTo(call.doc.wave(), services.audioLock, view.selectionStart,
                                     view.selectionEnd, work.progress());
  }
  const std::vector<std::string> faults = services.chain->takeFaultTexts();
  for (const std::string& fault : faults) services.prompter.message(fault);
  if (result == ChainResult::done) return std::nullopt;
  call.samplesTouched = true;
  return Refusal{result == ChainResult::failed && faults.empty() ? kNoMemory : ""};
}

}  // namespace

std::vector<Command> rackCommands() {
  return {{"rack-apply",
           "Appl&y VST rack",
           "",
           Menu::process,
           {},
           checkChain,
           chainUndo,
           Command::Lock::none,
           runChain,
           [](CommandCall&) -> std::string { return "VST effect applied"; },
           Command::Changes::samples}};
}

}  // namespace plumetta
