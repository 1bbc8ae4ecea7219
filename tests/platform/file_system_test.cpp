// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/paths.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

FileSystem& files() { return nativeFileSystem(); }

bool onWindows() { return isPathSeparator('\\'); }

void create(const std::string& path, const std::string& bytes) {
  std::error_code error;
  const auto file = files().createNew(path, error);
  ASSERT_TRUE(file) << error.message();
  EXPECT_FALSE(file->write(bytes.data(), bytes.size()));
  EXPECT_FALSE(file->sync());
  EXPECT_FALSE(file->close());
}

TEST(FileSystem, ReadsBackWhatItWroteUnderAnyName) {
  const TemporaryFolder folder;
  const std::string path = folder.file("\xC3\xA9t\xC3\xA9 \xE6\xB3\xA2.wav");
  create(path, "0123456789");
  EXPECT_EQ(files().kind(path), FileKind::regular);

  std::error_code error;
  const auto file = files().openForReading(path, error);
  ASSERT_TRUE(file) << error.message();
  EXPECT_EQ(file->size(), 10u);
  char buffer[16] = {};
  EXPECT_EQ(file->read(buffer, 4, error), 4u);
  EXPECT_FALSE(file->seek(7));
  EXPECT_EQ(file->read(buffer + 4, 10, error), 3u) << "the end of the file comes early and is no error";
  EXPECT_FALSE(error);
  EXPECT_STREQ(buffer, "0123789");
  EXPECT_FALSE(file->seek(uint64_t{5} << 30)) << "offsets beyond 32 bits";
  EXPECT_EQ(file->read(buffer, 1, error), 0u);
  EXPECT_FALSE(error);
}

TEST(FileSystem, OverwritesInAFileBeingWritten) {
  const TemporaryFolder folder;
  std::error_code error;
  const auto file = files().createNew(folder.file("a"), error);
  ASSERT_TRUE(file);
  EXPECT_FALSE(file->write("abcdef", 6));
  EXPECT_FALSE(file->seek(2));
  EXPECT_FALSE(file->write("XY", 2));
  EXPECT_FALSE(file->close());
  EXPECT_EQ(bytesOf(folder.file("a")), "abXYef");
}

TEST(FileSystem, RefusesWhatItMustNotOpen) {
  const TemporaryFolder folder;
  writeBytes(folder.file("there"), "x");
  std::error_code error;
  EXPECT_FALSE(files().openForReading(folder.file("missing"), error));
  EXPECT_EQ(error, std::errc::no_such_file_or_directory);
  EXPECT_FALSE(files().openForReading(folder.path(), error));
  EXPECT_TRUE(error) << "a folder";
  if (!onWindows()) {
    EXPECT_FALSE(files().openForReading("/dev/zero", error));
    EXPECT_TRUE(error) << "a device";
    EXPECT_EQ(files().kind("/dev/zero"), FileKind::special);
  }
  EXPECT_FALSE(files().createNew(folder.file("there"), error));
  EXPECT_EQ(error, std::errc::file_exists);
  EXPECT_EQ(bytesOf(folder.file("there")), "x");
  EXPECT_FALSE(files().openSpecialForWriting(folder.file("missing"), error));
  EXPECT_TRUE(error);
  EXPECT_EQ(files().kind(folder.file("missing")), FileKind::missing) << "nothing may be created";
}

TEST(FileSystem, ReplacesInOneStep) {
  const TemporaryFolder folder;
  for (const bool sync : {false, true}) {
    writeBytes(folder.file("old"), "old");
    writeBytes(folder.file("new"), "new");
    EXPECT_FALSE(files().replace(folder.file("new"), folder.file("old"), sync));
    EXPECT_EQ(bytesOf(folder.file("old")), "new");
    EXPECT_EQ(folder.entries(), 1u);
  }
  EXPECT_TRUE(files().replace(folder.file("missing"), folder.file("old"), false));
  EXPECT_EQ(bytesOf(folder.file("old")), "new");
}

TEST(FileSystem, MakesListsAndRemoves) {
  const TemporaryFolder folder;
  const std::string deep = joinPath(folder.file("a"), "b");
  EXPECT_FALSE(files().makeFolders(deep));
  EXPECT_FALSE(files().makeFolders(deep)) << "what is there already is no error";
  EXPECT_EQ(files().kind(deep), FileKind::folder);
  writeBytes(joinPath(deep, "\xC3\xA9"), "x");
  writeBytes(joinPath(deep, "two"), "x");
  auto names = files().list(deep);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"two", "\xC3\xA9"}));

  EXPECT_TRUE(files().makeFolders(joinPath(deep, "two"))) << "a file is in the way";
  EXPECT_TRUE(files().remove(deep)) << "a folder that holds something stays";
  EXPECT_FALSE(files().remove(joinPath(deep, "two")));
  EXPECT_FALSE(files().remove(joinPath(deep, "\xC3\xA9")));
  EXPECT_FALSE(files().remove(deep));
  EXPECT_EQ(files().kind(deep), FileKind::missing);
  EXPECT_TRUE(files().list(deep).empty());
}

TEST(FileSystem, TellsWhetherAFileMayBeWritten) {
  const TemporaryFolder folder;
  writeBytes(folder.file("a"), "x");
  EXPECT_FALSE(files().checkWritable(folder.file("a")));
  EXPECT_FALSE(files().checkWritable(folder.path()));
  EXPECT_TRUE(files().checkWritable(folder.file("missing")));
  EXPECT_EQ(bytesOf(folder.file("a")), "x");
}

TEST(FileSystem, ANewFileIsPrivateUntilItAdoptsTheAccessOfItsModel) {
  if (onWindows()) GTEST_SKIP() << "permissions there are lists, not modes";
  using std::filesystem::perms;
  const TemporaryFolder folder;
  const auto modeOf = [&](const char* name) {
    return std::filesystem::status(folder.file(name)).permissions();
  };
  create(folder.file("new"), "x");
  EXPECT_EQ(modeOf("new"), perms::owner_read | perms::owner_write);

  writeBytes(folder.file("ordinary"), "x");
  EXPECT_FALSE(files().adoptAccess(folder.file("new"), folder.file("missing")));
  EXPECT_EQ(modeOf("new"), modeOf("ordinary"));
  for (const unsigned mode : {0640u, 0444u, 0755u}) {
    std::filesystem::permissions(folder.file("ordinary"), static_cast<perms>(mode));
    EXPECT_FALSE(files().adoptAccess(folder.file("new"), folder.file("ordinary")));
    EXPECT_EQ(modeOf("new"), static_cast<perms>(mode));
  }
}

TEST(FileSystem, FollowsLinksToTheLast) {
  const TemporaryFolder folder;
  EXPECT_EQ(files().resolveLinks(folder.file("missing")), folder.file("missing"));
  writeBytes(folder.file("a"), "x");
  EXPECT_EQ(files().resolveLinks(folder.file("a")), folder.file("a"));
  std::error_code error;
  std::filesystem::create_symlink("a", folder.file("relative"), error);
  if (error) GTEST_SKIP() << "links can't be made here: " << error.message();
  std::filesystem::create_symlink(folder.file("relative"), folder.file("twice"));
  std::filesystem::create_symlink("nothing", folder.file("dangling"));
  EXPECT_EQ(files().resolveLinks(folder.file("twice")), folder.file("a"));
  EXPECT_EQ(files().resolveLinks(folder.file("dangling")), folder.file("nothing"));
  std::filesystem::create_symlink("round", folder.file("round"));
  EXPECT_FALSE(files().resolveLinks(folder.file("round")).empty()) << "a circle must come to an end";
}

}  // namespace
}  // namespace plumetta
