// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/shortcuts.h"

#include <gtest/gtest.h>

#include "app/key_press.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

Shortcuts fewActions() {
  return Shortcuts({{"copy", "Edit", "Copy", "Ctrl+C", ""},
                    {"stop", "Transport", "Stop", "Esc", ""},
                    {"zoom", "View", "Zoom", "Ctrl++", ""},
                    {"trim", "Edit", "Trim", "", ""}});
}

// "copy=Ctrl+C stop=Esc ..." as they are at present.
std::string keysOf(const Shortcuts& shortcuts) {
  std::string text;
  for (const ShortcutRow& row : shortcuts.rows()) text += (text.empty() ? "" : " ") + row.id + "=" + row.key;
  return text;
}

TEST(KeyPress, IsReadInAnySpellingAndWrittenInOne) {
  const struct {
    const char* text;
    const char* spelled;  // "" for what is no key
  } cases[] = {{"Ctrl+Shift+T", "Ctrl+Shift+T"},
               {"shift + control+t", "Ctrl+Shift+T"},
               {"alt+CTRL+f12", "Ctrl+Alt+F12"},
               {"Ctrl++", "Ctrl++"},
               {"+", "+"},
               {"Ctrl+-", "Ctrl+-"},
               {"m", "M"},
               {"Escape", "Esc"},
               {"pgdn", "PageDown"},
               {"Ctrl+KP_Add", "Ctrl+KP_Add"},
               {"F24", "F24"},
               {"F25", ""},
               {"F0", ""},
               {"Ctrl+", ""},
               {"Ctrl", ""},
               {"Ctrl+Ctrl+A", ""},
               {"Meta+A", ""},
               {"AB", ""},
               {"\xC3\xA4", ""},
               {"", ""},
               {"+A", ""}};
  for (const auto& [text, spelled] : cases) {
    const auto press = parseKeyPress(text);
    EXPECT_EQ(press ? keyPressText(*press) : "", spelled) << text;
  }
  EXPECT_FALSE(parseKeyPress(std::string(100000, '+')));
}

TEST(Shortcuts, ReservedKeysAreForTheirDefaultsAlone) {
  const Shortcuts shortcuts = fewActions();
  for (const char* key : {"Esc", "Tab", "F6", "Enter", "Left", "Shift+Home", "Alt+F", "Alt+F4", "nonsense"}) {
    EXPECT_FALSE(shortcuts.refusal(*shortcuts.find("copy"), key).empty()) << key;
  }
  for (const char* key : {"", " ", "M", "Ctrl+Home", "Ctrl+Tab", "Ctrl+F6", "Alt+Shift+F", "Space"}) {
    EXPECT_TRUE(shortcuts.refusal(*shortcuts.find("copy"), key).empty()) << key;
  }
  EXPECT_TRUE(shortcuts.refusal(*shortcuts.find("stop"), "escape").empty());
}

TEST(Shortcuts, KeyHasOneOwner) {
  Shortcuts shortcuts = fewActions();
  shortcuts.set("trim", "ctrl+c");
  EXPECT_EQ(keysOf(shortcuts), "copy= stop=Esc zoom=Ctrl++ trim=Ctrl+C");
  shortcuts.set("trim", "");
  EXPECT_EQ(shortcuts.ownerOf("Ctrl+C"), nullptr);
  shortcuts.resetAll();
  EXPECT_EQ(keysOf(shortcuts), keysOf(fewActions()));
}

TEST(Shortcuts, FileGoesBeforeDefaultsAndTheFirstOfTwoWins) {
  const struct {
    const char* lines;
    const char* keys;
    size_t problems;
  } cases[] = {{"", "copy=Ctrl+C stop=Esc zoom=Ctrl++ trim=", 0},
               {"TRIM=control+t\r\n", "copy=Ctrl+C stop=Esc zoom=Ctrl++ trim=Ctrl+T", 0},
               {"stop=\r\n", "copy=Ctrl+C stop= zoom=Ctrl++ trim=", 0},
               {"trim=Ctrl+C\r\n", "copy= stop=Esc zoom=Ctrl++ trim=Ctrl+C", 1},
               {"trim=F2\r\ncopy=F2\r\n", "copy=F2 stop=Esc zoom=Ctrl++ trim=", 1},
               {"copy=Hyper+9\r\nunknown=Ctrl+C\r\n", "copy=Ctrl+C stop=Esc zoom=Ctrl++ trim=", 1},
               {"trim=Esc\r\n", "copy=Ctrl+C stop=Esc zoom=Ctrl++ trim=", 1}};
  for (const auto& [lines, keys, problems] : cases) {
    const TemporaryFolder folder;
    writeBytes(folder.file("plumetta.keys"), std::string("[Keys]\r\n") + lines);
    Shortcuts shortcuts = fewActions();
    shortcuts.set("copy", "F9");  // forgotten by loading
    EXPECT_EQ(shortcuts.load(folder.file("plumetta.keys")).size(), problems) << lines;
    EXPECT_EQ(keysOf(shortcuts), keys) << lines;
  }
}

TEST(Shortcuts, FileComesBackAsItWasSavedAndKeepsWhatItDoesNotKnow) {
  const TemporaryFolder folder;
  const std::string path = folder.file("plumetta.keys");
  writeBytes(path, "[Keys]\r\nfuture=Ctrl+9\r\nzoom=Hyper+1\r\n");
  Shortcuts shortcuts = fewActions();
  shortcuts.load(path);
  shortcuts.set("trim", "Ctrl+C");
  shortcuts.set("stop", "\"");
  ASSERT_TRUE(shortcuts.save(path));
  EXPECT_EQ(bytesOf(path), "[Keys]\r\nfuture=Ctrl+9\r\nzoom=Hyper+1\r\ncopy=\r\nstop=\"\r\ntrim=Ctrl+C\r\n");
  Shortcuts again = fewActions();
  EXPECT_EQ(again.load(path).size(), 1u);
  EXPECT_EQ(keysOf(again), keysOf(shortcuts));
  again.resetAll();
  ASSERT_TRUE(again.save(path, true));
  EXPECT_TRUE(again.load(path).empty());
  EXPECT_EQ(keysOf(again), keysOf(fewActions()));
  EXPECT_FALSE(again.save(folder.file("missing") + "/a.keys", true));
}

TEST(Shortcuts, CommandsHaveNoKeyTwice) {
  for (const Shortcuts shortcuts(commandShortcuts()); const ShortcutRow& row : shortcuts.rows()) {
    EXPECT_EQ(row.key, row.defaultKey) << row.id;
    EXPECT_EQ(row.text.find('&'), std::string::npos) << row.id;
  }
}

}  // namespace
}  // namespace plumetta
