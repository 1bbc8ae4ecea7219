// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/plugin_library.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <sstream>

#include "platform/child_process.h"
#include "platform/crash_note.h"
#include "platform/file_identity.h"
#include "platform/paths.h"
#include "platform/plugin_folders.h"
#include "platform/private_profile.h"
#include "platform/replace_file.h"
#include "vst/program_file.h"
#include "vst/skipped_plugins.h"

namespace plumetta {
namespace {

constexpr const char* kUnableToLoadChain = "Unable to load the chain ";
constexpr const char* kLaterVersion = "The chain is of a later version. Nothing was loaded from ";
constexpr const char* kNotFromNetwork = "Plug-ins are not loaded over the network: ";
constexpr const char* kUnknownLibraries =
    "The chain loads plug-ins that are neither in the list nor in a usual folder:";

bool isNumber(const std::string& text, size_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc{} && end == text.data() + text.size();
}

bool isNameOf(const PluginDescription& plugin, const std::string& wanted) {
  return sameProfileName(plugin.effectName, wanted) || sameProfileName(plugin.product, wanted) ||
         sameProfileName(fileNameOf(plugin.path), wanted) || sameProfileName(plugin.displayName(), wanted);
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
  return text;
}

// Of the chain's libraries those that are there and that nobody has chosen before, each once.
std::vector<std::string> unknownLibraries(Application& app, const Chain& chain) {
  std::set<std::string> known;
  for (const PluginDescription& plugin : listedPlugins(app)) known.insert(realPath(plugin.path));
  for (int slot = 0; slot < VstHost::kSlots; ++slot) {
    if (const VstPlugin* plugin = app.vstHost().plugin(slot)) known.insert(realPath(plugin->path()));
  }
  std::vector<std::string> folders = usualPluginFolders();
  for (std::string& folder : folders) folder = realPath(folder);
  std::vector<std::string> unknown;
  for (const ChainPlugin& plugin : chain) {
    if (isNetworkPath(plugin.path) || app.files().kind(absolutePath(plugin.path)) != FileKind::regular)
      continue;
    const std::string path = realPath(plugin.path);
    const auto holds = [&](const std::string& folder) { return liesInFolder(path, folder); };
    if (std::ranges::any_of(folders, holds)) continue;
    if (known.insert(path).second) unknown.push_back(plugin.path);
  }
  return unknown;
}

// False when the person would rather not.
bool agreesToLoad(Application& app, const Chain& chain, UnknownLibraries policy) {
  const std::vector<std::string> unknown = unknownLibraries(app, chain);
  if (unknown.empty()) return true;
  const std::string text = std::string(kUnknownLibraries) + "\n" + joined(unknown);
  if (policy == UnknownLibraries::ask) {
    return app.prompter().question(text + "\nDo you want to load them?");
  }
  app.prompter().message(text);
  return true;
}

void tellWhatIsMissing(Prompter& prompter, const ChainRestoration& restoration) {
  if (!restoration.notLoaded.empty()) prompter.message(unableToLoad(joined(restoration.notLoaded)));
  if (!restoration.onNetwork.empty()) prompter.message(kNotFromNetwork + joined(restoration.onNetwork));
}

// A file has put other values, and maybe another program, into a plug-in.
void noteProgram(Rack& rack, int position) {
  const VstPlugin& plugin = *rack.pluginAt(position);
  const intptr_t program = plugin.dispatch(effGetProgram);
  if (program >= 0 && program < plugin.programCount()) {
    rack.recordProgram(rack.slotAt(position), static_cast<int>(program));
  }
  if (rack.positionChanged) rack.positionChanged(position);
}

ProgramOutcome tell(Prompter& prompter, const std::string& text) {
  prompter.message(text);
  return ProgramOutcome::refused;
}

}  // namespace

std::string pluginListPath(const Application& app) { return joinPath(app.homeFolder(), "plumetta.vst"); }

std::string skippedPluginsPath(const Application& app) {
  return joinPath(app.homeFolder(), "plumetta.vst-skipped");
}

ScanPlaces scanPlaces(const Application& app) {
  return {pluginListPath(app), skippedPluginsPath(app), ownExecutable()};
}

std::vector<PluginDescription> listedPlugins(const Application& app) {
  return PluginListFile(pluginListPath(app)).load();
}

std::optional<std::string> pluginPath(Application& app, const std::string& wanted) {
  const std::string path = absolutePath(wanted);
  if (app.files().kind(path) == FileKind::regular) return path;
  const std::vector<PluginDescription> plugins = listedPlugins(app);
  size_t number = 0;
  if (isNumber(wanted, number)) {
    if (number < plugins.size()) return plugins[number].path;
    if (plugins.empty()) {
      app.prompter().message(kPluginListEmpty);
      return std::nullopt;
    }
  }
  for (const PluginDescription& plugin : plugins) {
    if (isNameOf(plugin, wanted)) return plugin.path;
  }
  return path;
}

bool loadChainFile(Application& app, const std::string& path, UnknownLibraries unknown) {
  Prompter& prompter = app.prompter();
  std::error_code error;
  const std::string content = readWholeFile(app.files(), path, kLargestPluginFile, error);
  if (error) {
    prompter.message(kUnableToLoadChain + path + "\n" + error.message());
    return false;
  }
  const std::span bytes(reinterpret_cast<const uint8_t*>(content.data()), content.size());
  const ChainForm form = chainFormOf(bytes);
  if (form == ChainForm::later) {
    prompter.message(kLaterVersion + path);
    return true;
  }
  if (form == ChainForm::old && !prompter.question(kOldChainQuestion)) return true;
  Chain chain;
  if (!parseChain(bytes, form, chain)) {
    prompter.message(kUnableToLoadChain + path + "\nIt is damaged, or no chain at all.");
    return false;
  }
  if (!agreesToLoad(app, chain, unknown)) return true;
  noteCrashes(app);
  std::erase_if(chain, [&](const ChainPlugin& plugin) { return !agreesToCrashed(app, plugin.path); });
  putIntoRack(app, chain);
  return true;
}

void putIntoRack(Application& app, const Chain& chain) {
  const BusyScope busy(app.prompter());
  tellWhatIsMissing(app.prompter(), restoreChain(app.rack(), chain));
}

std::vector<std::string> noteCrashes(Application& app) {
  std::istringstream notes(takeCrashNotes(app.homeFolder()));
  SkippedPlugins skipped(app.files(), skippedPluginsPath(app));
  std::vector<std::string> paths;
  for (std::string path; std::getline(notes, path);) {
    if (path.empty() || std::ranges::count(paths, path) > 0) continue;
    paths.push_back(path);
    skipped.add(path, SkipReason::crashed);  // a list that can't be written shows with the next scan
  }
  return paths;
}

bool hasCrashed(Application& app, const std::string& path) {
  return SkippedPlugins(app.files(), skippedPluginsPath(app)).contains(path);
}

bool agreesToCrashed(Application& app, const std::string& path) {
  if (!hasCrashed(app, path)) return true;
  return app.prompter().question(path +
                                 "\nThis plug-in has crashed or hung before. Do you want to load it all the "
                                 "same?");
}

ProgramOutcome loadProgramFile(Application& app, int position, ProgramFileKind kind,
                               const std::string& path) {
  VstPlugin* plugin = app.rack().pluginAt(position);
  if (plugin == nullptr) return ProgramOutcome::refused;
  const bool isBank = kind == ProgramFileKind::bank;
  const ProgramLoad result =
      isBank ? loadBank(app.files(), *plugin, path) : loadProgram(app.files(), *plugin, path);
  switch (result) {
    case ProgramLoad::loaded:
      noteProgram(app.rack(), position);
      return ProgramOutcome::done;
    case ProgramLoad::unreadable:
      app.prompter().message("Unable to open " + path);
      return ProgramOutcome::fileError;
    case ProgramLoad::wrongIdentifier:
      return tell(app.prompter(), kWrongIdentifier);
    case ProgramLoad::wrongProgramNumber:
      return tell(app.prompter(), kWrongProgramNumber);
    case ProgramLoad::foreign:
      break;
  }
  return ProgramOutcome::refused;
}

ProgramOutcome saveProgramFile(Application& app, int position, ProgramFileKind kind,
                               const std::string& path) {
  VstPlugin* plugin = app.rack().pluginAt(position);
  if (plugin == nullptr) return ProgramOutcome::refused;
  const bool isBank = kind == ProgramFileKind::bank;
  const std::error_code error =
      isBank ? saveBank(app.files(), *plugin, path) : saveProgram(app.files(), *plugin, path);
  noteProgram(app.rack(), position);
  return error ? tell(app.prompter(), isBank ? kUnableToSaveBank : kUnableToSaveProgram)
               : ProgramOutcome::done;
}

}  // namespace plumetta
