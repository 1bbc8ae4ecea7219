// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/wave.h"

#include <gtest/gtest.h>

#include "support/waves.h"

namespace plumetta {
namespace {

TEST(Wave, CreateRefusesWhatNoFileHasAndChangesNothing) {
  struct Case {
    int channels, bits;
    int64_t frames;
    uint16_t tag;
  };
  auto wave = countingWave(2, 10);
  for (const Case& c : {Case{0, 16, 1, 1}, Case{17, 16, 1, 1}, Case{1, 12, 1, 1}, Case{1, 16, 1, 6},
                        Case{1, 16, -1, 1}, Case{1, 16, int64_t{1} << 31, 1}}) {
    EXPECT_FALSE(wave->create(8000, c.channels, c.bits, c.frames, c.tag));
    EXPECT_EQ(wave->channels(), 2);
    EXPECT_EQ(framesIn(*wave), span(0, 9));
  }
}

TEST(Wave, TheMixOfActiveChannelsIsTheirMean) {
  auto wave = countingWave(3, 3);
  for (int c = 0; c < 3; ++c) wave->setSample(1, c, static_cast<float>(1 << c));
  wave->setActive(ActiveOperation::off, 1);
  ASSERT_TRUE(wave->mixDownToMono(kMixActiveChannels));
  EXPECT_EQ(wave->sample(1, 0), 2.5f);
}

TEST(Wave, LargeBlocksGrowAndShrinkInPlaceWithoutLosingASample) {
  constexpr int32_t kFrames = 3000000;  // beyond the size from which blocks are mapped
  auto wave = countingWave(2, kFrames);
  const auto clip = countingWave(2, 1234567);
  ASSERT_TRUE(wave->insertBuffer(*clip, 1000000));
  ASSERT_TRUE(wave->deleteRange(1000000, 1000000 + 1234567 - 1));
  for (int32_t f = 0; f < kFrames; f += 997) ASSERT_EQ(wave->sample(f, 0), static_cast<float>(f));
  ASSERT_TRUE(wave->deleteRange(100, kFrames - 1));
  EXPECT_EQ(framesIn(*wave), span(0, 99));
}

}  // namespace
}  // namespace plumetta
