// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/settings.h"

#include <gtest/gtest.h>

#include <clocale>
#include <locale>

#include "app/application.h"
#include "platform/private_profile.h"
#include "support/recording_prompter.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

// What `settingsAsText` says of a key.
std::string valueOf(const Settings& settings, const std::string& key) {
  const std::string text = "\n" + settingsAsText(settings);
  const size_t at = text.find("\n" + key + "=");
  if (at == std::string::npos) return "no such key";
  const size_t begin = at + key.size() + 2;
  return text.substr(begin, text.find('\n', begin) - begin);
}

Settings loaded(const std::string& bytes) {
  const TemporaryFolder folder;
  writeBytes(folder.file("plumetta.cfg"), bytes);
  Settings settings;
  SettingsFile(folder.file("plumetta.cfg")).load(settings);
  return settings;
}

struct Case {
  const char* section;
  const char* key;
  const char* text;   // as it stands in the file
  const char* value;  // afterwards
  bool accepted;
};

const Case kCases[] = {
    {"General", "LastFileOpenedIndex", "0", "12", false},
    {"General", "LastFileOpenedIndex", "1000", "1000", true},
    {"General", "LastFileOpenedIndex", "1001", "12", false},
    {"General", "MRUCount", "0", "10", false},
    {"General", "MRUCount", "16", "16", true},
    {"General", "MRUCount", "17", "10", false},
    {"General", "MRUCount", "0x0F", "15", true},
    {"General", "MRUCount", "  7 files", "7", true},
    {"General", "MRUCount", "\"7\"", "7", true},
    {"General", "MRUCount", "4294967303", "7", true},  // wraps as the platform's function does
    {"General", "MRUCount", "none", "10", false},
    {"General", "ChildTimeFormat", "4", "3", false},
    {"General", "ChildTimeFormat", "0", "0", true},
    {"General", "ChildTimeFormat", "-1", "3", false},
    {"General", "SelectionGridLineNumber", "1024", "1024", true},
    {"General", "SelectionGridLineNumber", "1025", "4", false},
    {"General", "OutOfWaveSpeed", "2000", "2000", true},
    {"General", "OutOfWaveSpeed", "2001", "400", false},
    {"General", "ForwardRewindSpeed", "99", "99", true},
    {"General", "ForwardRewindSpeed", "100", "4", false},
    {"General", "AudioInSampleRate", "88200", "44100", false},
    {"General", "AudioInSampleRate", "192000", "192000", true},
    {"General", "AudioInBitDepth", "24", "24", true},
    {"General", "AudioInBitDepth", "32", "16", false},
    {"General", "AudioInId", "-5", "-5", true},
    {"General", "AudioInBufferSize(sample)", "1", "1", true},
    {"General", "AudioInBufferSize(sample)", "8193", "8192", true},
    {"General", "AudioInBufferSize(sample)", "0", "8192", true},
    {"General", "AudioOutSampleRate", "88200", "88200", true},
    {"General", "AudioOutSampleRate", "8000", "44100", false},
    {"General", "AudioOutBitDepth", "24", "16", false},
    {"General", "AudioOutBitDepth", "8", "8", true},
    {"General", "AudioOutBufferSize(sample)", "0", "4096", true},
    {"General", "AudioOutBufferSize(sample)", "4097", "4096", true},
    {"General", "AudioOutBufferSize(sample)", "1", "1", true},
    {"General", "Loop", "1", "1", true},
    {"General", "Loop", "2", "0", false},
    {"General", "Keep recording files (.rec)", "1", "1", true},
    {"General", "RealTimeResampling", "-1", "1", false},
    {"General", "VSTBPM", "99.5", "99.5000000", true},
    {"General", "VSTBPM", "-1e3", "-1000.0000000", true},
    {"General", "VSTBPM", "nan", "125.0000000", false},
    {"General", "VSTBPM", "inf", "125.0000000", false},
    {"General", "VSTBPM", "1e39", "125.0000000", false},  // no 32-bit float
    {"General", "VSTBPM", "fast", "125.0000000", false},
    {"General", "VSTBPM", "99,5", "125.0000000", false},
    {"General", "GeneralVolume", "+0.1", "0.1000000", true},
    {"General", "SelectionMultDivFactor", "0", "2.0000000", true},
    {"General", "SelectionMultDivFactor", "-1", "2.0000000", true},
    {"General", "SelectionMultDivFactor", "NaN", "2.0000000", true},
    {"General", "SelectionMultDivFactor", "3.25", "3.2500000", true},
    {"General", "SamplePathOpen", "\" two words \"", "\" two words \"", true},
    {"General", "SamplePathOpen", "/tmp/\xC3\xA9", "/tmp/\xC3\xA9", true},
    {"MidiIn", "MidiInOpen15", "15", "15", true},
    {"MidiIn", "MidiInOpen00", "-1", "-1", true},
    {"MidiInCommand", "MidiCommandToggleWindow", "255", "255", true},
    {"MidiInCommand", "MidiCommandPlay", "256", "10", false},
    {"MidiInCommand", "MidiCommandPlay", "-1", "10", false},
    {"Routing out", "Channel15", "3", "3", true},
    {"Routing out", "Channel00", "-1", "-1", true},
    {"Routing out", "Channel01", "16", "1", false},
};

TEST(Settings, ChecksOfLoadingAndOfSettingOne) {
  for (const Case& c : kCases) {
    const std::string file = std::string("[") + c.section + "]\r\n" + c.key + "=" + c.text + "\r\n";
    EXPECT_EQ(valueOf(loaded(file), c.key), c.value) << c.key << "=" << c.text;
    Settings settings;
    const auto result = setSetting(settings, c.section, c.key, c.text);
    EXPECT_EQ(result, c.accepted ? SetResult::done : SetResult::refused) << c.key << "=" << c.text;
    EXPECT_EQ(valueOf(settings, c.key), c.value) << c.key << "=" << c.text;
  }
  Settings settings;
  EXPECT_EQ(setSetting(settings, "Routing out", "Loop", "1"), SetResult::unknownKey);
  EXPECT_EQ(setSetting(settings, "General", "MidiCommandPlay", "1"), SetResult::unknownKey);
  EXPECT_EQ(setSetting(settings, "gENERAL", "LOOP", "1"), SetResult::done);
  EXPECT_EQ(setSetting(settings, "General", "SamplePathOpen", std::string(1024, 'x')), SetResult::done);
  EXPECT_EQ(setSetting(settings, "General", "SamplePathOpen", std::string(1025, 'x')), SetResult::refused);
  EXPECT_EQ(setSetting(settings, "General", "SamplePathOpen", "a\nLoop=1"), SetResult::refused);
}

TEST(Settings, EveryRowComesBackFromTheFile) {
  const TemporaryFolder folder;
  const SettingsFile file(folder.file("plumetta.cfg"));
  Settings changed;
  for (const SettingRow& row : settingRows()) {
    const bool number = !std::holds_alternative<PathPlace>(row.place);
    // Any value that is accepted and no default.
    const Settings defaults;
    for (const char* value : {"1", "0", "5", "3", "8", "48000"}) {
      Settings one = changed;
      if (setSetting(one, row.section, row.key,
                     number                     ? value
                     : row.problemOf != nullptr ? "https://a.example/b"
                                                : " odd'\" ") != SetResult::done)
        continue;
      if (valueOf(one, row.key) == valueOf(defaults, row.key)) continue;
      changed = one;
      break;
    }
    EXPECT_NE(valueOf(changed, row.key), valueOf(defaults, row.key)) << row.key;
  }
  EXPECT_TRUE(file.save(changed));
  Settings back;
  file.load(back);
  EXPECT_EQ(settingsAsText(back), settingsAsText(changed));
  EXPECT_EQ(settingRows().size(), 42u + 4u + 2u + 16u + 13u + 16u);
}

TEST(Settings, WhatIsNoSettingsFileGivesTheDefaults) {
  const std::string defaults = settingsAsText(Settings{});
  std::string utf16("\xFF\xFE", 2), junk;
  for (const char c : std::string("[General]\r\nMRUCount=3\r\n")) utf16 += {c, '\0'};
  uint32_t state = 1;
  for (int i = 0; i < 4 << 20; ++i) junk += static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  const struct {
    const char* what;
    std::string bytes;
  } cases[] = {
      {"nothing", ""},
      {"no section", "MRUCount=3\r\n"},
      {"another section", "[Other]\r\nMRUCount=3\r\n"},
      {"open bracket", "[General\r\nMRUCount=3\r\n"},
      {"a comment", "[General]\r\n;MRUCount=3\r\n"},
      {"random bytes", junk},
      {"one long line", "[General]\r\nMRUCount" + std::string(4 << 20, '=')},
      {"many short ones", "[General]\n" + std::string(4 << 20, '\n')},
      {"many heads", std::string(4 << 20, '[')},
      {"no end of a section", "[General]" + std::string(4 << 20, ']')},
  };
  for (const auto& c : cases) EXPECT_EQ(settingsAsText(loaded(c.bytes)), defaults) << c.what;
  // Systems with profiles of their own read this one.
  const std::string wide = valueOf(loaded(utf16), "MRUCount");
  EXPECT_TRUE(wide == "10" || wide == "3");
  EXPECT_EQ(valueOf(loaded("\xEF\xBB\xBF[General]\nMRUCount=3\n"), "MRUCount"), "3");
}

TEST(Settings, SavingKeepsWhatIsNotItsOwnAndIsReadBack) {
  const TemporaryFolder folder;
  const std::string path = folder.file("plumetta.cfg");
  const SettingsFile file(path);
  writeBytes(path, "; mine\r\n[Other]\r\nKey=1\r\n[General]\r\nOld=x\r\nmrucount=9\r\n\r\n[Last]\r\nEnd=2");
  Settings settings;
  settings.files.recentFiles = 5;
  settings.plugins.tempo = 0.125;
  EXPECT_TRUE(file.save(settings));
  const struct {
    const char* section;
    const char* key;
    const char* value;
  } kept[] = {{"Other", "Key", "1"},
              {"General", "Old", "x"},
              {"Last", "End", "2"},
              {"General", "MRUCount", "5"},
              {"General", "VSTBPM", "0.1250000"}};
  for (const auto& k : kept) EXPECT_EQ(readProfileString(path, k.section, k.key, "none"), k.value) << k.key;
  EXPECT_EQ(bytesOf(path).find("; mine\r\n"), 0u);
  EXPECT_EQ(folder.entries(), 1u);
  const std::string once = bytesOf(path);
  EXPECT_TRUE(file.save(settings));
  EXPECT_EQ(bytesOf(path), once);

  writeBytes(path, std::string("\xFF\xFE[\0G\0]\0\r\0\n\0", 12));
  EXPECT_TRUE(file.save(settings));
  Settings back;
  file.load(back);
  EXPECT_EQ(back.files.recentFiles, 5);
}

struct Comma : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
};

TEST(Settings, CommaOfTheLocaleChangesNothing) {
  // German where the system has it, and in any case for what goes through streams.
  std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
  const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
  EXPECT_EQ(valueOf(loaded("[General]\nVSTBPM=99.5\n"), "VSTBPM"), "99.5000000");
  std::locale::global(before);
  std::setlocale(LC_NUMERIC, "C");
}

TEST(Settings, FolderOfADialog) {
  const TemporaryFolder folder;
  FileSystem& files = nativeFileSystem();
  const std::string home = dialogFolder(files, "");
  EXPECT_FALSE(home.empty());  // whether there is one is the machine's business
  EXPECT_EQ(dialogFolder(files, folder.path()), folder.path());
  writeBytes(folder.file("file"), "x");
  for (const std::string& stored : {folder.file("file"), folder.file("gone"), std::string(".")}) {
    EXPECT_EQ(dialogFolder(files, stored), home) << stored;
  }
}

TEST(Settings, FolderThatCannotBeWrittenIsToldOnce) {
  const TemporaryFolder folder;
  RecordingPrompter prompter;
  Application app(prompter, nativeFileSystem(), folder.path());
  std::filesystem::create_directories(folder.file("plumetta.cfg"));  // in the way of the file
  EXPECT_FALSE(app.saveSettings());
  EXPECT_FALSE(app.saveSettings());
  EXPECT_EQ(prompter.messages.size(), 1u);
}

}  // namespace
}  // namespace plumetta
