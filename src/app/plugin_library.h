// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/application.h"
#include "vst/chain_file.h"
#include "vst/plugin_scan.h"

namespace plumetta {

// Where the program keeps what scans have found.
std::string pluginListPath(const Application& app);
std::string skippedPluginsPath(const Application& app);
// For a scan that fills them.
ScanPlaces scanPlaces(const Application& app);

// The list, in the order in which its numbers count.
std::vector<PluginDescription> listedPlugins(const Application& app);

// The library that a person means: a file, or a number or a name of the list. What is none of these is taken
// for a path. Nothing, with a message, when a number is asked of a list that is empty.
std::optional<std::string> pluginPath(Application& app, const std::string& wanted);

// ---- Chains ---------------------------------------------------------------------------------------------

// What happens before a chain loads code that is neither in the list nor in a usual folder nor in the rack.
enum class UnknownLibraries { ask, tell };

// Replaces the rack by the chain of a file. Messages tell what went wrong and what of it could not be loaded.
// False when the file can't be read or is damaged; the rack is then as it was, as it is when the person
// declines or the file is of a later version. Plug-ins that have crashed are left out unless the person wants
// them.
bool loadChainFile(Application& app, const std::string& path, UnknownLibraries unknown);

// Replaces the rack by a chain. Messages tell what of it could not be loaded.
void putIntoRack(Application& app, const Chain& chain);

// ---- Plug-ins that crash --------------------------------------------------------------------------------

// The libraries that have taken the program down since the last call. Scans and chains leave them out from
// now on.
std::vector<std::string> noteCrashes(Application& app);
bool hasCrashed(Application& app, const std::string& path);
// Asks before one of these is loaded. False when the person would rather not.
bool agreesToCrashed(Application& app, const std::string& path);

// ---- Programs -------------------------------------------------------------------------------------------

enum class ProgramFileKind { program, bank };

enum class ProgramOutcome {
  done,
  refused,  // a message has said why, unless the file is another plug-in's preset
  fileError
};

// Of the plug-in at a position of the rack; refused for an empty one.
ProgramOutcome loadProgramFile(Application& app, int position, ProgramFileKind kind, const std::string& path);
ProgramOutcome saveProgramFile(Application& app, int position, ProgramFileKind kind, const std::string& path);

}  // namespace plumetta
