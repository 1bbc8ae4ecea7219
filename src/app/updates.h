// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

#include "app/application.h"
#include "net/update_check.h"

namespace plumetta {

// What the server is told of the program, "Plumetta/1.5.0.1".
std::string programAgent();

// Begins to ask the update server. Null when there is none in the settings, or when the person, who is asked
// once before the first request of all, would rather not; a message has said so of the former.
std::unique_ptr<UpdateCheck> askForUpdates(Application& app);

// The same at the start of the program, where nobody is asked anything: null unless the person has agreed
// earlier, there is a server, and the settings want it.
std::unique_ptr<UpdateCheck> askForUpdatesAtStart(const Settings& settings);

// The answer in words.
std::string updateNews(const UpdateAnswer& answer);

}  // namespace plumetta
