// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/wave.h"

#include <gtest/gtest.h>

#include "support/waves.h"

namespace plumetta {
namespace {

TEST(Wave, NewBufferIsATenthOfASecondOfSilence) {
  const CWave wave;
  EXPECT_EQ(wave.frames(), 4410);
  EXPECT_EQ(wave.channels(), 1);
  EXPECT_EQ(wave.bitsPerSample(), 16);
  EXPECT_EQ(wave.sampleRate(), 44100u);
  EXPECT_EQ(wave.fileName(), "~tmp.wav");
  EXPECT_EQ(wave.sample(4409, 0), 0.0f);
}

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

TEST(Wave, CopyRangePacksTheActiveChannelsAndTakesAnnotationsAlong) {
  auto wave = countingWave(3, 10);
  wave->markers.add(4, "here");
  wave->markers.add(9);
  wave->loops.setLoop(3, 5);
  wave->loops.header.midiUnityNote = 72;
  wave->setActive(ActiveOperation::off, 1);
  CWave copy;
  ASSERT_TRUE(wave->copyRangeTo(copy, 6, 2));  // ends in either order
  EXPECT_EQ(copy.channels(), 2);
  EXPECT_EQ(framesIn(copy), span(2, 6));
  EXPECT_FLOAT_EQ(copy.sample(0, 1), 2.02f);
  EXPECT_EQ(markerPositions(copy), std::vector<int>{2});
  EXPECT_EQ(copy.markers[0].label, "here");
  EXPECT_EQ(copy.loops.start(0), 1);
  EXPECT_EQ(copy.loops.end(0), 3);
  EXPECT_EQ(copy.loops.header.midiUnityNote, 72u);

  EXPECT_FALSE(wave->copyRangeTo(copy, 0, 10));
  for (int c : {0, 2}) wave->setActive(ActiveOperation::off, c);
  EXPECT_FALSE(wave->copyRangeTo(copy, 0, 1));
}

TEST(Wave, InsertMovesAnnotationsBehindThePosition) {
  auto wave = countingWave(2, 10);
  wave->markers.add(3);
  wave->markers.add(4);
  wave->loops.setLoop(3, 8);
  wave->envelope.setLengthField(10);
  wave->envelope.addChannel();
  wave->envelope.addChannel();
  wave->envelope.insertPoint(5, 0.25f, 1, EnvelopeKind::hold);
  auto clip = countingWave(2, 3);
  clip->markers.add(1, "clip");
  ASSERT_TRUE(wave->insertBuffer(*clip, 3));
  EXPECT_EQ(framesIn(*wave, 1), span(0, 2) + span(0, 2) + span(3, 9));
  EXPECT_EQ(markerPositions(*wave), (std::vector<int>{3, 7, 4}));
  EXPECT_EQ(wave->loops.start(0), 3);
  EXPECT_EQ(wave->loops.end(0), 11);
  EXPECT_EQ(wave->envelope.length(), 13);
  EXPECT_EQ(wave->envelope.point(1, 1).position, 8);
  EXPECT_EQ(wave->envelope.point(2, 1).position, 12);
}

TEST(Wave, InsertTakesMonoIntoEveryChannelAndNothingElseThatDiffers) {
  auto wave = countingWave(3, 4);
  EXPECT_FALSE(wave->insertBuffer(*countingWave(2, 2), 1));
  EXPECT_FALSE(wave->insertBuffer(*countingWave(1, 2), 4));
  ASSERT_TRUE(wave->insertBuffer(*countingWave(1, 2), 1));
  for (int c = 0; c < 3; ++c) {
    EXPECT_EQ(framesIn(*wave, c), (std::vector<int>{0, 0, 1, 1, 2, 3}));
    EXPECT_EQ(wave->sample(2, c), 1.0f);
  }

  CWave empty;
  empty.create(8000, 1, 16, 0, 1);
  empty.setFileName("kept.wav");
  auto source = countingWave(2, 3);
  source->loops.setLoop(0, 2);
  ASSERT_TRUE(empty.insertBuffer(*source, 0));
  EXPECT_EQ(empty.channels(), 2);
  EXPECT_EQ(empty.sampleRate(), 44100u);
  EXPECT_EQ(empty.fileName(), "kept.wav");
  EXPECT_TRUE(empty.loops.hasLoops());
}

TEST(Wave, SilenceGoesInAnywhereUpToTheEnd) {
  for (int32_t position : {0, 2, 4}) {
    auto wave = countingWave(2, 4);
    wave->markers.add(3);
    ASSERT_TRUE(wave->insertSilence(position, 3));
    const std::vector<int> silence{0, 0, 0};
    EXPECT_EQ(framesIn(*wave), span(0, position - 1) + silence + span(position, 3));
    EXPECT_EQ(wave->sample(position + 1, 1), 0.0f);
    EXPECT_EQ(wave->markers[0].position, position < 3 ? 6 : 3);
  }
  EXPECT_FALSE(countingWave(1, 4)->insertSilence(5, 1));
  EXPECT_FALSE(countingWave(1, 4)->insertSilence(0, kMaxFrames));
}

TEST(Wave, DeleteAndTrimLeaveTheRest) {
  auto wave = countingWave(2, 10);
  EXPECT_FALSE(wave->deleteRange(5, 10));
  ASSERT_TRUE(wave->deleteRange(7, 3));
  EXPECT_EQ(framesIn(*wave, 1), span(0, 2) + span(8, 9));
  ASSERT_TRUE(wave->trim(1, 3));
  EXPECT_EQ(framesIn(*wave), (std::vector<int>{1, 2, 8}));
  ASSERT_TRUE(wave->deleteRange(0, 2));
  EXPECT_EQ(wave->frames(), 0);
  ASSERT_TRUE(wave->insertSilence(0, 2));
  EXPECT_EQ(wave->frames(), 2);
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

TEST(Wave, ChannelsAreRemovedMixedAndDoubled) {
  auto wave = countingWave(3, 4);
  ASSERT_TRUE(wave->removeChannel(1));
  EXPECT_FLOAT_EQ(wave->sample(3, 1), 3.02f);
  EXPECT_FALSE(wave->removeChannel(2));
  wave->setSample(0, 0, 1.0f);
  wave->setSample(0, 1, 0.5f);
  wave->setActive(ActiveOperation::off, 1);
  ASSERT_TRUE(wave->mixDownToMono(kMixActiveChannels));
  EXPECT_EQ(wave->sample(0, 0), 1.0f);
  EXPECT_FALSE(wave->removeChannel(0));

  auto other = countingWave(2, 4);
  EXPECT_FALSE(other->mixDownToMono(2));
  ASSERT_TRUE(other->mixDownToMono(kMixAllChannels));
  EXPECT_FLOAT_EQ(other->sample(2, 0), 2.005f);
  other->envelope.setLengthField(4);
  other->envelope.addChannel();
  other->envelope.insertPoint(2, 1.0f, 0, EnvelopeKind::linear);
  ASSERT_TRUE(other->monoToStereo());
  EXPECT_EQ(framesIn(*other, 0), framesIn(*other, 1));
  EXPECT_EQ(other->envelope.channelCount(), 2);
  EXPECT_EQ(other->envelope.pointCount(0), 2);  // flat again by design
  EXPECT_FALSE(countingWave(3, 1)->monoToStereo());
}

TEST(Wave, ActiveChannelsSwitchOneAllOrNone) {
  auto wave = countingWave(3, 1);
  const auto flags = [&] {
    return std::vector<int>{wave->isActive(0), wave->isActive(1), wave->isActive(2)};
  };
  wave->setActive(ActiveOperation::solo, 1);
  EXPECT_EQ(flags(), (std::vector<int>{0, 1, 0}));
  wave->setActive(ActiveOperation::on, 0);
  wave->setActive(ActiveOperation::toggle, 1);
  EXPECT_EQ(flags(), (std::vector<int>{1, 0, 0}));
  wave->setActive(ActiveOperation::all, 3);  // no such channel
  EXPECT_EQ(wave->activeCount(), 1);
  wave->setActive(ActiveOperation::all, 0);
  EXPECT_TRUE(wave->allActive());
  EXPECT_FALSE(wave->isActive(3));
}

}  // namespace
}  // namespace plumetta
