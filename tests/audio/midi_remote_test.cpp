// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/midi_remote.h"

#include <gtest/gtest.h>

#include <thread>

#include "support/fake_midi_in.h"

namespace plumetta {
namespace {

class MidiRemoteTest : public testing::Test {
 protected:
  MidiRemoteTest() : remote_(system_, volume_) {
    remote_.setPoster([this](RemoteCommand command, int value) {
      posted_ += kRemoteCommands[static_cast<size_t>(command)].name + (" " + std::to_string(value)) + ";";
    });
    EXPECT_TRUE(remote_.open(0, 1));
  }
  // What one message posts.
  std::string play(int status, int data1, int data2) {
    posted_.clear();
    system_.play(1, status, data1, data2);
    return posted_;
  }

  FakeMidiIn system_;
  std::atomic<float> volume_{0.25f};
  MidiRemote remote_;
  std::string posted_;
};

TEST_F(MidiRemoteTest, PostsTheCommandOfAController) {
  const struct {
    int status, controller, value;
    const char* posted;
  } cases[] = {
      {0xB0, 10, 127, "MidiCommandPlay 127;"},
      {0xBF, 11, 0, "MidiCommandStop 0;"},  // any channel, and a value of 0 counts
      {0xB3, 50, 1, "MidiCommandToggleWindow 1;"},
      {0xB0, 14, 127, ""},
      {0x90, 10, 100, ""},  // a note of that number
      {0x80, 10, 100, ""},
      {0xE0, 10, 100, ""},
      {0xF8, 0, 0, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(play(c.status, c.controller, c.value), c.posted) << c.controller;
  EXPECT_EQ(volume_, 0.25f);
}

TEST_F(MidiRemoteTest, SetsVolumeAndPanItself) {
  const struct {
    int controller, value;
    float volume, first, second;
  } cases[] = {
      {40, 127, 1.0f, 1, 1},
      {40, 0, 0.0f, 1, 1},
      {40, 64, 0.503937f, 1, 1},
      {41, 64, 0.503937f, 1, 1},
      {41, 127, 0.503937f, 1, 0},
      {41, 0, 0.503937f, 0, 1},
      {41, 63, 0.503937f, 1, 1},
      {41, 21, 0.503937f, 1.0f / 3, 1},
      {41, 106, 0.503937f, 1, 1.0f / 3},
      {41, 128, 0.503937f, 0, 1},
  };
  for (const auto& c : cases) {
    play(0xB0, c.controller, c.value);
    EXPECT_NEAR(volume_, c.volume, 1e-6) << c.value;
    EXPECT_NEAR(remote_.firstPanGain(), c.first, 1e-6) << c.value;
    EXPECT_NEAR(remote_.secondPanGain(), c.second, 1e-6) << c.value;
  }
}

TEST_F(MidiRemoteTest, FirstOfTwoCommandsWithOneNumberWins) {
  RemoteControllers numbers = defaultControllers();
  numbers[static_cast<size_t>(RemoteCommand::record)] = 50;
  remote_.setControllers(numbers);
  EXPECT_EQ(play(0xB0, 50, 1), "MidiCommandRecord 1;");
  EXPECT_EQ(play(0xB0, 13, 1), "");
}

TEST_F(MidiRemoteTest, LearnsTheNextControllerAndRunsNothingOfIt) {
  remote_.startLearning();
  EXPECT_EQ(remote_.takeLearned(), std::nullopt);
  EXPECT_EQ(play(0x90, 60, 100), "");
  EXPECT_EQ(remote_.takeLearned(), std::nullopt) << "a note is no controller";
  EXPECT_EQ(play(0xB2, 10, 5), "");
  EXPECT_EQ(play(0xB2, 11, 5), "MidiCommandStop 5;") << "one is learned, no more";
  EXPECT_EQ(remote_.takeLearned(), 10);
  EXPECT_EQ(remote_.takeLearned(), std::nullopt);
  remote_.startLearning();
  remote_.stopLearning();
  EXPECT_EQ(play(0xB0, 10, 1), "MidiCommandPlay 1;");
}

TEST_F(MidiRemoteTest, SlotsOpenAndClose) {
  EXPECT_TRUE(remote_.open(15, 2));
  EXPECT_FALSE(remote_.open(3, 2)) << "open in another slot";
  EXPECT_TRUE(remote_.open(15, 2)) << "opened again in its own";
  EXPECT_FALSE(remote_.open(4, 3)) << "no such device";
  EXPECT_FALSE(remote_.open(4, -1));
  system_.refusing = {1};
  EXPECT_FALSE(remote_.open(0, 1));
  EXPECT_FALSE(system_.isOpen(1)) << "closed before it was tried";
  EXPECT_TRUE(remote_.anyOpen());
  remote_.closeAll();
  EXPECT_FALSE(remote_.anyOpen() || system_.isOpen(2));
}

// For the thread sanitizer: the devices' threads against the one that sets the table.
TEST_F(MidiRemoteTest, TableChangesWhileMessagesArrive) {
  std::thread device([this] {
    for (int i = 0; i < 2000; ++i) system_.play(1, 0xB0, i % 128, i % 128);
  });
  for (int i = 0; i < 500; ++i) {
    RemoteControllers numbers = defaultControllers();
    numbers[0] = i % 256;
    remote_.setControllers(numbers);
    remote_.startLearning();
    remote_.takeLearned();
    EXPECT_LE(remote_.firstPanGain() + volume_, 2.0f);
  }
  device.join();
}

}  // namespace
}  // namespace plumetta
