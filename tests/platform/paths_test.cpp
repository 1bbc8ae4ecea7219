// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/paths.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace plumetta {
namespace {

struct PathCase {
  const char* path;
  const char* folder;
  const char* name;
  const char* extension;
};

void expectParts(const PathCase& c) {
  SCOPED_TRACE(c.path);
  EXPECT_EQ(folderOf(c.path), c.folder);
  EXPECT_EQ(fileNameOf(c.path), c.name);
  EXPECT_EQ(extensionOf(c.path), c.extension);
}

TEST(Paths, SplitsAtTheLastSeparator) {
  const PathCase cases[] = {
      {"take.wav", ".", "take.wav", "wav"},
      {"/take.WAV", "/", "take.WAV", "wav"},
      {"/a/b.d/take", "/a/b.d", "take", ""},
      {"a/take.tar.Gz", "a", "take.tar.Gz", "gz"},
      {"a/", "a", "", ""},
      {"take.", ".", "take.", ""},
      {"", ".", "", ""},
      {"\xC3\xA9t\xC3\xA9/\xC3\x89.aIf", "\xC3\xA9t\xC3\xA9", "\xC3\x89.aIf", "aif"},
  };
  for (const PathCase& c : cases) expectParts(c);
}

TEST(Paths, BackslashesSeparateOnlyOnWindows) {
  if (isPathSeparator('\\')) {
    expectParts({"C:\\sounds\\take.wav", "C:\\sounds", "take.wav", "wav"});
    expectParts({"C:\\take.wav", "C:\\", "take.wav", "wav"});
    expectParts({"C:/sounds\\take", "C:/sounds", "take", ""});
  } else {
    expectParts({"a/b\\take.wav", "a", "b\\take.wav", "wav"});
    expectParts({"C:/take.wav", "C:", "take.wav", "wav"});
  }
}

TEST(Paths, JoinsWithOneSeparator) {
  for (const char* folder : {"a", "a/"}) {
    const std::string joined = joinPath(folder, "take.wav");
    EXPECT_EQ(joined.size(), 10u) << joined;
    EXPECT_TRUE(isPathSeparator(joined[1])) << joined;
    EXPECT_EQ(fileNameOf(joined), "take.wav");
    EXPECT_EQ(folderOf(joined), "a");
  }
  EXPECT_EQ(joinPath("", "take.wav"), "take.wav");
}

TEST(Paths, AbsolutePathsNameTheSameFile) {
  const TemporaryFolder folder;
  EXPECT_EQ(absolutePath(folder.file("take.wav")), folder.file("take.wav"));
  const std::string fromHere = absolutePath("take.wav");
  EXPECT_EQ(fileNameOf(fromHere), "take.wav");
  EXPECT_TRUE(std::filesystem::equivalent(folderOf(fromHere), std::filesystem::current_path()));
}

TEST(Paths, ProgramFolderIsTheOneAskedForOrTheExecutables) {
  const TemporaryFolder folder;
  EXPECT_EQ(programFolder(folder.path()), folder.path());
  EXPECT_EQ(fileNameOf(programFolder("relative")), "relative");
  EXPECT_NE(programFolder("relative"), "relative") << "must not depend on the current folder later on";
  // The tests are built into a folder that may be written.
  EXPECT_EQ(programFolder(""), executableFolder());
  EXPECT_TRUE(std::filesystem::is_directory(executableFolder()));
}

}  // namespace
}  // namespace plumetta
