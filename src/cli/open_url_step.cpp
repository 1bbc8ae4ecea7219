// SPDX-License-Identifier: GPL-3.0-or-later
// The step `open-url`. A step of its own: what `open` is given is always a file, however it is named.
#include "cli/edit_steps.h"
#include "net/net_address.h"

namespace plumetta {
namespace {

const std::string& addressOf(const StepArguments& arguments) { return std::get<std::string>(arguments[0]); }

std::string addressFault(const StepArguments& arguments) {
  return addressProblem(addressOf(arguments), NetSchemes::webAndFiles);
}

StepOutcome openUrl(EditSession& session, const StepArguments& arguments) {
  FetchedFile fetched;
  if (session.app.urlReader().fetch(addressOf(arguments), fetched) != FetchOutcome::done) {
    return StepOutcome::fileError;
  }
  FileOutcome outcome{};
  CPlumettaDoc* opened = session.app.openFetched(fetched, outcome);
  if (opened != nullptr) session.doc = opened;
  return outcomeOf(outcome);
}

}  // namespace

EditStep openUrlStep() {
  return {"open-url", {{"url", "", "", ParameterType::text, true, std::string{}, 0, 0, ""}},
          false,      openUrl,
          nullptr,    addressFault};
}

}  // namespace plumetta
