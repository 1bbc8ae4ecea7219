// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/lock_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/temporary_folder.h"

namespace plumetta {
namespace {

TEST(LockFile, IsHeldByOneAndGoesWithItsOwner) {
  const TemporaryFolder folder;
  const std::string path = folder.file("lock");
  {
    auto lock = LockFile::create(path);
    ASSERT_TRUE(lock);
    EXPECT_EQ(folder.entries(), 1u) << "no passing name may stay behind";
    EXPECT_FALSE(LockFile::takeOver(path));
    EXPECT_FALSE(LockFile::create(path)) << "a living owner's file is not replaced";
    EXPECT_EQ(folder.entries(), 1u);
    const LockFile moved(std::move(*lock));
    lock.reset();
    EXPECT_FALSE(LockFile::takeOver(path)) << "the lock moves along with its object";
  }
  EXPECT_EQ(folder.entries(), 0u);
  EXPECT_FALSE(LockFile::takeOver(path)) << "there is nothing to take";
}

TEST(LockFile, TakesOverWhatAnEndedProcessLeft) {
  const TemporaryFolder folder;
  const std::string path = folder.file("lock");
  for (const auto take : {&LockFile::takeOver, &LockFile::create}) {
    writeBytes(path, "");
    {
      const auto lock = take(path);
      ASSERT_TRUE(lock);
      EXPECT_FALSE(LockFile::takeOver(path));
    }
    EXPECT_EQ(folder.entries(), 0u);
  }
}

TEST(LockFile, NeedsAFolder) {
  const TemporaryFolder folder;
  EXPECT_FALSE(LockFile::create(folder.file("missing/lock")));
}

}  // namespace
}  // namespace plumetta
