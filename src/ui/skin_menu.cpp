// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/skin_menu.h"

#include <wx/filedlg.h>

#include "app/skin_files.h"
#include "platform/paths.h"
#include "ui/skin_dialog.h"
#include "ui/text.h"
#include "ui/theme.h"

namespace plumetta {
namespace {

// '&' in a file name is no mnemonic.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) result += c == '&' ? std::string("&&") : std::string(1, c);
  return result;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
  return text;
}

}  // namespace

bool SkinMenu::isOwnThere() const {
  return app_.files().kind(ownSkinPath(app_.homeFolder())) == FileKind::regular;
}

std::vector<Action> SkinMenu::entries() {
  const std::string home = app_.homeFolder();
  const std::string worn = chosenSkinPath(app_.files(), home, app_.settings().program.skinFile);
  Action none{"", "&Default", "", "The colours that suit the desktop", [this] { wearDefault(); }};
  none.checked = [worn] { return worn.empty(); };
  std::vector<Action> actions{none};
  if (isOwnThere()) actions.push_back(fileEntry("&Own colours", ownSkinPath(home)));
  bool listed = worn.empty() || worn == ownSkinPath(home);
  for (const SkinFile& file : skinFiles(app_.files(), home)) {
    actions.push_back(fileEntry(escaped(file.name), file.path));
    listed = listed || file.path == worn;
  }
  if (!listed) actions.push_back(fileEntry(escaped(fileNameOf(worn)), worn));
  actions.push_back(kSeparator);
  actions.push_back({"", "O&pen skin…", "", "Colours from a file", [this] { open(); }});
  actions.push_back({"", "&Edit colours…", "", "One by one", [this] { edit(); }});
  return actions;
}

Action SkinMenu::fileEntry(const std::string& text, const std::string& path) {
  Action action{"", text, "", "The colours of " + path, [this, path] {
                  wearFile(path);
                  onChanged();
                }};
  const bool worn = chosenSkinPath(app_.files(), app_.homeFolder(), app_.settings().program.skinFile) == path;
  action.checked = [worn] { return worn; };
  return action;
}

void SkinMenu::remember(const std::string& path) {
  app_.settings().program.skinFile = path.empty() ? ProgramSettings{}.skinFile : path;
  app_.saveSettings();
}

void SkinMenu::wearDefault() {
  if (giveUpOwn()) {
    remember("");
    wearSkin({});
  }
  onChanged();
}

bool SkinMenu::giveUpOwn() {
  if (!isOwnThere()) return true;
  const std::string own = ownSkinPath(app_.homeFolder());
  if (!app_.prompter().question("Your own colours are given up; \"Edit colours…\" could save them as a skin "
                                "before.\nGo on to the default ones?")) {
    return false;
  }
  const std::error_code error = app_.files().remove(own);
  if (error) app_.prompter().message("Unable to delete " + own + "\n" + error.message());
  return !error;
}

bool SkinMenu::wearFile(const std::string& path) {
  SkinReading reading = readSkin(app_.files(), path);
  if (!reading.isSkin || !isStorablePath(path)) {
    app_.prompter().message("Unable to use " + path + " as a skin.\n" + joined(reading.problems));
    return false;
  }
  remember(path == ownSkinPath(app_.homeFolder()) ? "" : path);
  wearSkin(reading.skin);
  for (std::string& problem : unreadableTexts(reading.skin, systemIsDark())) {
    reading.problems.push_back(std::move(problem));
  }
  if (!reading.problems.empty()) app_.prompter().message(path + "\n" + joined(reading.problems));
  return true;
}

void SkinMenu::open() {
  wxFileDialog dialog(&parent_, "Open skin",
                      toWx(profile_.text(kSkinSection, kSkinFolder, app_.homeFolder())), wxString(),
                      toWx(kSkinFilter), wxFD_OPEN | wxFD_FILE_MUST_EXIST);
  if (dialog.ShowModal() != wxID_OK) return;
  const std::string path = absolutePath(fromWx(dialog.GetPath()));
  profile_.setText(kSkinSection, kSkinFolder, folderOf(path));
  wearFile(path);
  onChanged();
}

void SkinMenu::edit() {
  const std::string own = ownSkinPath(app_.homeFolder());
  const bool replaces = isOwnThere() && chosenSkinPath(app_.files(), app_.homeFolder(),
                                                       app_.settings().program.skinFile) != own;
  SkinDialog dialog(&parent_, app_, profile_);
  if (dialog.ask(replaces)) remember("");
  onChanged();
}

}  // namespace plumetta
