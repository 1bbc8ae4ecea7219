// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/updates.h"

#include "doc/version_chunk.h"

namespace plumetta {
namespace {

// Asks before the first request of all; a consent is kept.
bool agreesToRequests(Application& app) {
  NetworkSettings& network = app.settings().network;
  if (network.consent) return true;
  network.consent = app.prompter().question(
      "May Plumetta ask " + shownAddress(network.updateServer) +
      " for the number of the newest version?\nThe server learns your network address and "
      "that this is version " +
      kVersion + ". Nothing but the number is fetched.");
  if (network.consent) app.saveSettings();
  return network.consent;
}

std::unique_ptr<UpdateCheck> ask(const NetworkSettings& network) {
  return std::make_unique<UpdateCheck>(network.updateServer, programAgent(), kVersion);
}

}  // namespace

std::string programAgent() { return std::string("Plumetta/") + kVersion; }

std::unique_ptr<UpdateCheck> askForUpdates(Application& app) {
  if (app.settings().network.updateServer.empty()) {
    app.prompter().message(
        "No update server is set. Its address has a place in the preferences, under Network.");
    return nullptr;
  }
  return agreesToRequests(app) ? ask(app.settings().network) : nullptr;
}

std::unique_ptr<UpdateCheck> askForUpdatesAtStart(const Settings& settings) {
  const NetworkSettings& network = settings.network;
  const bool wanted = network.checkAtStart && network.consent && !network.updateServer.empty();
  return wanted ? ask(network) : nullptr;
}

std::string updateNews(const UpdateAnswer& answer) {
  const std::string own = std::string("This is version ") + kVersion;
  switch (answer.state) {
    case UpdateState::newer:
      return "Version " + answer.version + " is available.\n" + own + ".";
    case UpdateState::same:
      return own + ", which is the newest one.";
    case UpdateState::older:
      return own + ", which is newer than the server's " + answer.version + ".";
    case UpdateState::unknown:
      break;
  }
  return "The newest version could not be found out.\n" + answer.reason;
}

}  // namespace plumetta
