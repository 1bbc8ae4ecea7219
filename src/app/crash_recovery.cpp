// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/crash_recovery.h"

#include "app/plugin_library.h"

namespace plumetta {
namespace {

std::string crashText(const std::vector<std::string>& plugins) {
  if (plugins.empty()) return {};
  std::string text = plugins.size() == 1 ? "A plug-in has crashed:" : "Plug-ins have crashed:";
  for (const std::string& path : plugins) text += "\n" + path;
  return text + "\nFrom now on it is loaded only after a question.";
}

}  // namespace

std::vector<CPlumettaDoc*> offerRecovery(Application& app) {
  const std::string crashed = crashText(noteCrashes(app));
  std::vector<LeftCopy> copies = app.recoveryFiles().leftCopies();
  if (copies.empty()) {
    if (!crashed.empty()) app.prompter().message(crashed);
    return {};
  }
  std::string text = crashed.empty() ? "The program did not end in good order." : crashed;
  text += "\n\nThere are copies of files with changes that were not saved:";
  for (const LeftCopy& copy : copies) text += "\n" + copy.info.title;
  text += "\nDo you want to open them? Otherwise they stay in " + app.homeFolder();
  const bool wanted = app.prompter().question(text);
  std::vector<CPlumettaDoc*> documents;
  for (LeftCopy& copy : copies) {
    if (!wanted) {
      app.recoveryFiles().keep(copy);
    } else if (CPlumettaDoc* document = app.openLeftCopy(std::move(copy))) {
      documents.push_back(document);
    }
  }
  return documents;
}

}  // namespace plumetta
