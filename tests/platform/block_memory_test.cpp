// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/block_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "platform/available_memory.h"

namespace plumetta {
namespace {

constexpr size_t kMegabyte = size_t{1} << 20;

uint8_t* bytesOf(const BlockMemory& block) { return static_cast<uint8_t*>(block.data()); }

uint8_t patternAt(size_t i) { return static_cast<uint8_t>(i * 31 + (i >> 12)); }

void fill(const BlockMemory& block, size_t from) {
  for (size_t i = from; i < block.size(); ++i) bytesOf(block)[i] = patternAt(i);
}

bool holdsPattern(const BlockMemory& block, size_t end) {
  for (size_t i = 0; i < end; ++i) {
    if (bytesOf(block)[i] != patternAt(i)) return false;
  }
  return true;
}

TEST(BlockMemory, KeepsItsLeadingBytesThroughEverySize) {
  const size_t sizes[] = {1,
                          100,
                          4 * kMegabyte - 1,
                          4 * kMegabyte,
                          4 * kMegabyte + 1,
                          37 * kMegabyte + 5,
                          90 * kMegabyte,
                          5 * kMegabyte,
                          7,
                          20 * kMegabyte,
                          3 * kMegabyte};
  BlockMemory block;
  BlockMemory neighbour;  // grows alongside, so that neither can always stay in place
  size_t before = 0;
  for (const size_t size : sizes) {
    SCOPED_TRACE(size);
    ASSERT_TRUE(block.resize(size));
    ASSERT_TRUE(neighbour.resize(size));
    EXPECT_EQ(block.size(), size);
    EXPECT_TRUE(holdsPattern(block, std::min(before, size)));
    fill(block, std::min(before, size));
    std::fill_n(bytesOf(neighbour), size, uint8_t{0xEE});
    before = size;
  }
  EXPECT_TRUE(holdsPattern(block, before));
}

TEST(BlockMemory, ZeroedBlocksAreZeroWhateverWasThere) {
  BlockMemory block;
  for (const size_t size : {size_t{1000}, 6 * kMegabyte, size_t{5000}, 5 * kMegabyte}) {
    ASSERT_TRUE(block.resizeZeroed(size));
    EXPECT_EQ(block.size(), size);
    EXPECT_TRUE(std::all_of(bytesOf(block), bytesOf(block) + size, [](uint8_t b) { return b == 0; })) << size;
    std::fill_n(bytesOf(block), size, uint8_t{0xFF});
  }
}

TEST(BlockMemory, RefusesWhatTheMachineHasNotAndKeepsTheBlock) {
  for (const size_t size : {size_t{1000}, 8 * kMegabyte}) {
    BlockMemory block;
    ASSERT_TRUE(block.resize(size));
    fill(block, 0);
    for (const size_t huge : {size_t{1} << 46, SIZE_MAX - 4096, SIZE_MAX}) {
      EXPECT_FALSE(block.resize(huge));
      EXPECT_FALSE(block.resizeZeroed(huge));
    }
    EXPECT_EQ(block.size(), size);
    EXPECT_TRUE(holdsPattern(block, size));
  }
  EXPECT_GT(availableMemoryBytes(), 16 * kMegabyte);
}

TEST(BlockMemory, MovesAndReleases) {
  BlockMemory first;
  ASSERT_TRUE(first.resize(5 * kMegabyte));
  fill(first, 0);
  BlockMemory second(std::move(first));
  EXPECT_EQ(first.data(), nullptr);
  EXPECT_EQ(first.size(), 0u);
  EXPECT_TRUE(holdsPattern(second, second.size()));
  first = std::move(second);
  EXPECT_EQ(first.size(), 5 * kMegabyte);
  EXPECT_EQ(second.data(), nullptr);
  EXPECT_TRUE(first.resize(0));
  EXPECT_EQ(first.data(), nullptr);
  EXPECT_TRUE(first.resizeZeroed(0));
}

}  // namespace
}  // namespace plumetta
