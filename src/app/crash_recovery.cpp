// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/crash_recovery.h"

#include <utility>

#include "app/plugin_library.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

std::string crashText(const std::vector<std::string>& plugins) {
  if (plugins.empty()) return {};
  std::string text = plugins.size() == 1 ? "A plug-in has crashed:" : "Plug-ins have crashed:";
  for (const std::string& path : plugins) text += "\n" + path;
  return text + "\nFrom now on it is loaded only after a question.";
}

// The first question begins with why there is one.
std::string opening(std::string& reason) {
  const std::string text = std::exchange(reason, {});
  return text.empty() ? text : text + "\n\n";
}

std::vector<CPlumettaDoc*> offerCopies(Application& app, std::string& reason) {
  std::vector<LeftCopy> copies = app.recoveryFiles().leftCopies();
  if (copies.empty()) return {};
  std::string text = opening(reason) + "There are copies of files with changes that were not saved:";
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

void offerChain(Application& app, std::string& reason) {
  ChainCopy& copy = app.chainCopy();
  std::optional<LeftChain> left = copy.left();
  if (!left) return;
  const size_t gone =
      std::erase_if(left->chain, [&](const ChainPlugin& plugin) { return hasCrashed(app, plugin.path); });
  if (left->chain.empty()) return copy.discard(*left);
  std::string text = opening(reason) + "The VST rack held";
  if (gone > 0) text += ", beside what has crashed";
  text += ":";
  for (const ChainPlugin& plugin : left->chain) text += "\n" + fileNameOf(plugin.path);
  text += "\nDo you want to load these plug-ins again? Otherwise their chain stays in " + copy.keptPath();
  if (!app.prompter().question(text)) return copy.keep(*left);
  putIntoRack(app, left->chain);
  copy.bringUpToDate();
  copy.discard(*left);
}

}  // namespace

std::vector<CPlumettaDoc*> offerRecovery(Application& app) {
  const std::string crashed = crashText(noteCrashes(app));
  std::string reason = crashed.empty() ? "The program did not end in good order." : crashed;
  std::vector<CPlumettaDoc*> documents = offerCopies(app, reason);
  offerChain(app, reason);
  if (!crashed.empty() && !reason.empty()) app.prompter().message(crashed);
  return documents;
}

}  // namespace plumetta
