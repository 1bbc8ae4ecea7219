// SPDX-License-Identifier: GPL-3.0-or-later
// What only Windows has: access lists, files in use, device names, long paths, address space to grow in.
#include <windows.h>

#include <aclapi.h>
#include <gtest/gtest.h>

#include <cstring>

#include "platform/block_memory.h"
#include "platform/file_system.h"
#include "platform/lock_file.h"
#include "platform/paths.h"
#include "platform/windows/wide.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

FileSystem& files() { return nativeFileSystem(); }

// Whether the file's own list lets everybody in.
bool isOpenToAll(const std::string& path) {
  PACL list = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  std::wstring name = wide(path);
  GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list,
                        nullptr, &descriptor);
  bool found = list == nullptr;
  for (WORD i = 0; list != nullptr && i < list->AceCount; ++i) {
    void* entry = nullptr;
    GetAce(list, i, &entry);
    const auto* rule = static_cast<const ACCESS_ALLOWED_ACE*>(entry);
    const bool reads = (rule->Mask & FILE_READ_DATA) != 0 && rule->Header.AceType == ACCESS_ALLOWED_ACE_TYPE;
    found |= reads && IsWellKnownSid(const_cast<DWORD*>(&rule->SidStart), WinWorldSid);
  }
  LocalFree(descriptor);
  return found;
}

void openToAll(const std::string& path) {
  wchar_t everyone[] = L"EVERYONE";
  EXPLICIT_ACCESSW rule{};
  rule.grfAccessPermissions = FILE_ALL_ACCESS;
  rule.grfAccessMode = GRANT_ACCESS;
  BuildTrusteeWithNameW(&rule.Trustee, everyone);
  PACL list = nullptr;
  std::wstring name = wide(path);
  ASSERT_EQ(SetEntriesInAclW(1, &rule, nullptr, &list), DWORD{ERROR_SUCCESS});
  SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, list,
                        nullptr);
  LocalFree(list);
  ASSERT_TRUE(isOpenToAll(path));
}

void makeNew(const std::string& path) {
  std::error_code error;
  ASSERT_TRUE(files().createNew(path, error)) << error.message();
}

TEST(WindowsFiles, ANewFileIsItsMakersAloneUntilItAdoptsTheAccessOfItsModel) {
  const TemporaryFolder folder;
  const std::string path = folder.file("new");
  writeBytes(folder.file("ordinary"), "x");
  writeBytes(folder.file("open"), "x");
  openToAll(folder.file("open"));
  makeNew(folder.file("closed"));
  makeNew(path);
  EXPECT_FALSE(isOpenToAll(path));
  EXPECT_FALSE(files().adoptAccess(path, folder.file("closed")));
  EXPECT_FALSE(isOpenToAll(path));
  EXPECT_FALSE(files().adoptAccess(path, folder.file("open")));
  EXPECT_TRUE(isOpenToAll(path));
  EXPECT_FALSE(files().adoptAccess(path, folder.file("missing")));
  EXPECT_EQ(isOpenToAll(path), isOpenToAll(folder.file("ordinary"))) << "the rules of its folder";
}

TEST(WindowsFiles, WhatIsInUseOrReadOnlyIsNotReplaced) {
  const TemporaryFolder folder;
  const std::string old = folder.file("old");
  writeBytes(old, "old");
  writeBytes(folder.file("new"), "new");
  const HANDLE user =
      CreateFileW(wide(old).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(user, INVALID_HANDLE_VALUE);
  EXPECT_TRUE(files().checkWritable(old));
  EXPECT_TRUE(files().replace(folder.file("new"), old, true));
  CloseHandle(user);
  EXPECT_FALSE(files().checkWritable(old));

  SetFileAttributesW(wide(old).c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(files().checkWritable(old), std::errc::permission_denied);
  EXPECT_TRUE(files().replace(folder.file("new"), old, true));
  SetFileAttributesW(wide(old).c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(bytesOf(old), "old");
  EXPECT_EQ(bytesOf(folder.file("new")), "new");
  EXPECT_FALSE(files().replace(folder.file("new"), old, true));
}

TEST(WindowsFiles, DevicesAreWrittenAsTheyStandAndNeverRead) {
  std::error_code error;
  for (const char* path : {"NUL", "nul", "\\\\.\\NUL", "\\\\.\\pipe\\nobody listens"}) {
    EXPECT_EQ(files().kind(path), FileKind::special) << path;
    EXPECT_FALSE(files().openForReading(path, error)) << path;
    EXPECT_TRUE(error) << path;
  }
  const auto sink = files().openSpecialForWriting("NUL", error);
  ASSERT_TRUE(sink) << error.message();
  EXPECT_FALSE(sink->write("gone", 4));
  EXPECT_FALSE(files().openSpecialForWriting("\\\\.\\pipe\\nobody listens", error));
  EXPECT_TRUE(error);
}

TEST(WindowsFiles, PathsMayBeLongerThanTheOldLimit) {
  const TemporaryFolder folder;
  std::string deep = folder.path();
  while (deep.size() < 400) deep += "/" + std::string(60, 'd') + "\xC3\xA9";
  ASSERT_FALSE(files().makeFolders(deep));
  const std::string path = joinPath(deep, "take.wav");
  makeNew(path);
  EXPECT_FALSE(files().checkWritable(path));
  EXPECT_FALSE(files().adoptAccess(path, joinPath(deep, "missing")));
  EXPECT_FALSE(files().replace(path, joinPath(deep, "there.wav"), true));
  EXPECT_EQ(files().list(deep), std::vector<std::string>{"there.wav"});
  EXPECT_TRUE(LockFile::create(joinPath(deep, "lock")));
  EXPECT_FALSE(files().remove(joinPath(deep, "there.wav")));
  // The short-path functions of the helper that clears up can't reach that far.
  for (; deep != folder.path(); deep = folderOf(deep)) EXPECT_FALSE(files().remove(deep)) << deep;
}

TEST(WindowsFiles, TheirOwnFolderIsRoaming) {
  const std::string folder = userConfigFolder();
  EXPECT_EQ(fileNameOf(folder), "Plumetta");
  EXPECT_EQ(files().kind(folderOf(folder)), FileKind::folder);
}

TEST(WindowsMemory, LargeBlocksGrowWhereTheyAre) {
  constexpr size_t kMebibyte = size_t{1} << 20;
  BlockMemory block;
  ASSERT_TRUE(block.resizeZeroed(8 * kMebibyte));
  const void* const place = block.data();
  std::memset(block.data(), 0x5A, block.size());
  for (const size_t size : {300 * kMebibyte, 5 * kMebibyte, 200 * kMebibyte + 1}) {
    ASSERT_TRUE(block.resize(size));
    EXPECT_EQ(block.data(), place);
    EXPECT_EQ(static_cast<const char*>(block.data())[4 * kMebibyte], 0x5A);
    static_cast<char*>(block.data())[size - 1] = 1;
  }
}

}  // namespace
}  // namespace plumetta
