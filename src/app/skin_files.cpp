// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/skin_files.h"

#include <algorithm>

#include "platform/paths.h"
#include "platform/private_profile.h"

namespace plumetta {
namespace {

constexpr const char* kOwnName = "plumetta.skin";

void addFrom(FileSystem& files, const std::string& folder, std::vector<SkinFile>& skins) {
  for (const std::string& fileName : files.list(folder)) {
    if (extensionOf(fileName) != kSkinExtension || sameProfileName(fileName, kOwnName)) continue;
    SkinFile skin{fileName.substr(0, fileName.rfind('.')), joinPath(folder, fileName)};
    if (files.kind(skin.path) != FileKind::regular) continue;
    const auto sameName = [&](const SkinFile& own) { return sameProfileName(own.name, skin.name); };
    if (std::ranges::none_of(skins, sameName)) skins.push_back(std::move(skin));
  }
}

}  // namespace

std::string ownSkinPath(const std::string& home) { return joinPath(home, kOwnName); }

std::string chosenSkinPath(FileSystem& files, const std::string& home, const std::string& setting) {
  for (const std::string& path : {setting, ownSkinPath(home)}) {
    if (files.kind(path) == FileKind::regular) return path;
  }
  return {};
}

std::vector<SkinFile> skinFiles(FileSystem& files, const std::string& home) {
  const std::string programs = executableFolder();
  std::vector<SkinFile> skins;
  addFrom(files, home, skins);
  // Beside the program, or where a Unix system keeps what programs share.
  addFrom(files, joinPath(programs, "skins"), skins);
  addFrom(files, joinPath(joinPath(joinPath(folderOf(programs), "share"), "plumetta"), "skins"), skins);
  std::ranges::sort(skins, {}, &SkinFile::name);
  return skins;
}

}  // namespace plumetta
