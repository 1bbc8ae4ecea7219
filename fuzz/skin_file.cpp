// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a skin and as a file of shortcuts: what is saved over them reads back as the same, and no key
// has two owners.
#include <cstdlib>
#include <set>

#include "app/shortcuts.h"
#include "app/skin.h"
#include "support/temporary_folder.h"

using namespace plumetta;

namespace {

void expect(bool holds) {
  if (!holds) std::abort();
}

void checkSkin(const std::string& path) {
  const Palette palette(readSkin(nativeFileSystem(), path).skin, false);
  expect(writeSkin(path, palette));
  expect(readSkin(nativeFileSystem(), path).skin == palette.asSkin());
}

void checkKeys(const std::string& path) {
  Shortcuts shortcuts(commandShortcuts()), again(commandShortcuts());
  shortcuts.load(path);
  std::set<std::string> keys;
  for (const ShortcutRow& row : shortcuts.rows()) expect(row.key.empty() || keys.insert(row.key).second);
  expect(shortcuts.save(path, true));
  expect(again.load(path).empty());
  for (const ShortcutRow& row : shortcuts.rows()) expect(again.find(row.id)->key == row.key);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const TemporaryFolder folder;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  for (const char* name : {"a.skin", "a.keys"}) writeBytes(folder.file(name), bytes);
  checkSkin(folder.file("a.skin"));
  checkKeys(folder.file("a.keys"));
  return 0;
}
