// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/private_profile.h"

#include <gtest/gtest.h>

#include "platform/paths.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

// The platform's own functions, where it has them, lay out a file as they please.
bool keepsBytes() { return !isPathSeparator('\\'); }

TEST(PrivateProfile, ReadsByTheRules) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.ini");
  writeBytes(
      path,
      "Stray=1\r\n[General]\r\n;Level=9\r\n  Level =  -3.5  \r\nlevel=7\r\nQuoted=\" kept \"\r\n"
      "Single='x'\r\nHalf=\"x\r\nEquals=a=b\r\nEmpty=\r\n\r\n[ Other ]\nLevel=2\n[last]\nEnd=\xC3\xA9");
  const struct {
    const char* section;
    const char* key;
    const char* value;
  } cases[] = {
      {"General", "Level", "-3.5"}, {"gENERAL", "LEVEL", "-3.5"}, {"General", "Quoted", " kept "},
      {"General", "Single", "x"},   {"General", "Half", "\"x"},   {"General", "Equals", "a=b"},
      {"General", "Empty", ""},     {"Other", "Level", "2"},      {"last", "End", "\xC3\xA9"},
      {"General", "End", "none"},   {"General", "Stray", "none"}, {"None", "Level", "none"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(readProfileString(path, c.section, c.key, "none"), c.value) << c.section << " " << c.key;
  }
  EXPECT_EQ(readProfileString(folder.file("missing.ini"), "General", "Level", "none"), "none");
}

TEST(PrivateProfile, ReadsIntegersUpToTheFirstOtherCharacter) {
  const TemporaryFolder folder;
  const struct {
    const char* text;
    int number;
  } cases[] = {{"12", 12},  {"-12", -12}, {"+5", 5}, {"12abc", 12}, {"0x1F", 31},
               {"abc", 0},  {"3.9", 3},   {"", -99}, {"  44", 44},  {"2147483647", 2147483647},
               {"-1x", -1}, {"\"8\"", 8}};
  int number = 0;
  for (const auto& c : cases) {
    const std::string path = folder.file(std::to_string(number++) + ".ini");
    writeBytes(path, std::string("[a]\r\nk=") + c.text + "\r\n");
    EXPECT_EQ(readProfileInt(path, "A", "K", -99), c.number) << c.text;
  }
}

TEST(PrivateProfile, WritesOneKeyAndLeavesTheRest) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.ini");
  writeBytes(path, "; mine\r\n[General]\r\nA=1\r\nb =  2\r\n\r\n[Other]\r\nA=3\r\n");
  EXPECT_TRUE(writeProfileString(path, "general", "B", "two"));
  EXPECT_TRUE(writeProfileString(path, "General", "C", "new"));
  EXPECT_TRUE(writeProfileString(path, "Third", "D", "\xC3\xA9"));
  EXPECT_EQ(readProfileString(path, "General", "b", ""), "two");
  EXPECT_EQ(readProfileString(path, "General", "C", ""), "new");
  EXPECT_EQ(readProfileString(path, "General", "A", ""), "1");
  EXPECT_EQ(readProfileString(path, "Other", "A", ""), "3");
  EXPECT_EQ(readProfileString(path, "Other", "C", "none"), "none");
  EXPECT_EQ(readProfileString(path, "Third", "D", ""), "\xC3\xA9");
  if (keepsBytes()) {
    EXPECT_EQ(
        bytesOf(path),
        "; mine\r\n[General]\r\nA=1\r\nB=two\r\nC=new\r\n\r\n[Other]\r\nA=3\r\n[Third]\r\nD=\xC3\xA9\r\n");
    EXPECT_EQ(folder.entries(), 1u) << "no passing file may stay behind";
  }
}

TEST(PrivateProfile, KeepsLineEndsAndTheByteOrderMarkOfOtherPrograms) {
  if (!keepsBytes()) GTEST_SKIP();
  const TemporaryFolder folder;
  const std::string path = folder.file("a.ini");
  writeBytes(path, "\xEF\xBB\xBF[General]\nA=1\nB=2");
  EXPECT_TRUE(writeProfileString(path, "General", "A", "x"));
  EXPECT_EQ(bytesOf(path), "\xEF\xBB\xBF[General]\nA=x\nB=2");
  EXPECT_TRUE(writeProfileString(path, "General", "C", "y"));
  EXPECT_EQ(bytesOf(path), "\xEF\xBB\xBF[General]\nA=x\nB=2\nC=y\n");
}

}  // namespace
}  // namespace plumetta
