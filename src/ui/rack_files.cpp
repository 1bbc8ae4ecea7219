// SPDX-License-Identifier: GPL-3.0-or-later
// The files of the rack's window: plug-ins, chains, presets and banks.
#include <wx/filedlg.h>

#include "platform/paths.h"
#include "ui/plugin_list_panel.h"
#include "ui/rack_dialog.h"
#include "ui/text.h"
#include "vst/chain_file.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "VST rack";
constexpr const char* kPresetFolder = "Preset folder";

#ifdef __WXMSW__
constexpr const char* kPluginFilter = "VST Plugin (*.dll)|*.dll|All Files (*.*)|*.*";
#else
constexpr const char* kPluginFilter = "VST Plugin (*.so)|*.so|VST Plugin (*.dll)|*.dll|All Files (*.*)|*";
#endif
constexpr const char* kChainFilter = "VST Chain (*.sor)|*.sor|All Files (*.*)|*.*";

struct ProgramFiles {
  const char* openFilter;
  const char* saveFilter;
  const char* extension;
  const char* name;
};
constexpr ProgramFiles kPresets{"Preset (*.fxp)|*.fxp|All Files (*.*)|*.*",
                                "Fxp file (*.fxp)|*.fxp|All Files (*.*)|*.*", "fxp", "preset"};
constexpr ProgramFiles kBanks{"Bank (*.fxb)|*.fxb|All Files (*.*)|*.*",
                              "Fxb file (*.fxb)|*.fxb|All Files (*.*)|*.*", "fxb", "bank"};

const ProgramFiles& filesOf(ProgramFileKind kind) {
  return kind == ProgramFileKind::program ? kPresets : kBanks;
}

}  // namespace

std::optional<std::string> CVSTRackDlg::askFile(const wxString& title, const char* filter,
                                                const std::string& folder, const char* extension, bool save) {
  // "*.*" names every file to one toolkit, and those with a dot to the other.
  wxString patterns = filter;
  if (wxString(wxFileSelectorDefaultWildcardStr) == "*") patterns.Replace("|*.*", "|*");
  wxFileDialog dialog(this, title, toWx(dialogFolder(app_.files(), folder)), wxString(), patterns,
                      save ? wxFD_SAVE | wxFD_OVERWRITE_PROMPT : wxFD_OPEN | wxFD_FILE_MUST_EXIST);
  if (dialog.ShowModal() != wxID_OK) return std::nullopt;
  std::string path = absolutePath(fromWx(dialog.GetPath()));
  if (save && extensionOf(path).empty()) {
    path += std::string(".") + extension;
    // The dialog has asked about the name that was typed, not about this one.
    if (app_.files().kind(path) != FileKind::missing &&
        !app_.prompter().question(path + "\nThis file exists already. Do you want to replace it?")) {
      return std::nullopt;
    }
  }
  return path;
}

void CVSTRackDlg::keepFolder(std::string& setting, const std::string& path) {
  const std::string folder = folderOf(path);
  if (folder == setting || !isStorablePath(folder)) return;
  setting = folder;
  app_.saveSettings();
}

void CVSTRackDlg::add() {
  if (const auto path = pickPlugin(this, app_, profile_)) addAtFirstFree(*path);
}

void CVSTRackDlg::replace() {
  const int position = std::max(selected(), 0);
  if (const auto path = pickPlugin(this, app_, profile_)) place(position, *path);
}

void CVSTRackDlg::addFile() {
  std::string& folder = app_.settings().plugins.pluginFolder;
  const auto path = askFile("Add a VST plug-in", kPluginFilter, folder, "", false);
  if (!path) return;
  keepFolder(folder, *path);
  addAtFirstFree(*path);
}

void CVSTRackDlg::loadChain() {
  std::string& folder = app_.settings().plugins.chainFolder;
  const auto path = askFile("Load a VST chain", kChainFilter, folder, "sor", false);
  if (!path) return;
  keepFolder(folder, *path);
  app_.secureDocuments();
  loadChainFile(app_, *path, UnknownLibraries::ask);
  editors_.titleByName();
  positions_->Refresh();
  select(0);
  showChain();
}

void CVSTRackDlg::saveChain() {
  std::string& folder = app_.settings().plugins.chainFolder;
  const auto path = askFile("Save the VST chain", kChainFilter, folder, "sor", true);
  if (!path) return;
  keepFolder(folder, *path);
  if (const auto error = plumetta::saveChain(app_.files(), rack_, *path)) {
    app_.prompter().message("Unable to save " + *path + "\n" + error.message());
  }
}

void CVSTRackDlg::loadPrograms(ProgramFileKind kind) {
  const ProgramFiles& files = filesOf(kind);
  const std::string folder = profile_.text(kSection, kPresetFolder, app_.settings().plugins.chainFolder);
  const auto path =
      askFile(wxString("Load a ") + files.name, files.openFilter, folder, files.extension, false);
  if (!path) return;
  profile_.setText(kSection, kPresetFolder, folderOf(*path));
  const ProgramOutcome outcome = loadProgramFile(app_, selected(), kind, *path);
  const bool silent = outcome == ProgramOutcome::refused && kind == ProgramFileKind::program;
  app_.prompter().status(silent ? "This is no preset of the plug-in: " + *path : std::string());
}

void CVSTRackDlg::savePrograms(ProgramFileKind kind) {
  const ProgramFiles& files = filesOf(kind);
  const std::string folder = profile_.text(kSection, kPresetFolder, app_.settings().plugins.chainFolder);
  const auto path =
      askFile(wxString("Save the ") + files.name, files.saveFilter, folder, files.extension, true);
  if (!path) return;
  profile_.setText(kSection, kPresetFolder, folderOf(*path));
  saveProgramFile(app_, selected(), kind, *path);
}

}  // namespace plumetta
