// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/midi_setup.h"

#include <gtest/gtest.h>

#include "support/fake_midi_in.h"
#include "support/recording_prompter.h"

namespace plumetta {
namespace {

using Messages = std::vector<std::string>;

class MidiSetup : public testing::Test {
 protected:
  FakeMidiIn system_;
  std::atomic<float> volume_{1.0f};
  MidiRemote remote_{system_, volume_};
  RecordingPrompter prompter_;
};

TEST_F(MidiSetup, StartOpensWhatTheSettingsName) {
  MidiSettings settings;
  settings.devices[4] = 2;
  settings.controllers[static_cast<size_t>(RemoteCommand::volume)] = 7;
  startMidi(remote_, settings, prompter_);
  EXPECT_TRUE(remote_.isOpen(4) && system_.isOpen(2) && !system_.isOpen(0));
  EXPECT_EQ(prompter_.messages, Messages{});
  system_.play(2, 0xB0, 7, 0);
  EXPECT_EQ(volume_, 0.0f);

  settings.devices = {9, 0, 8};
  startMidi(remote_, settings, prompter_);
  EXPECT_TRUE(remote_.isOpen(1));
  EXPECT_EQ(prompter_.messages, Messages{"Unable to start midi in driver"});
}

TEST_F(MidiSetup, ChoiceOpensClosesAndIsStored) {
  MidiSettings settings;
  ASSERT_TRUE(remote_.open(7, 2));
  system_.refusing = {1};
  MidiChoice choice;
  choice.open = {true, true, true};
  choice.controllers.fill(200);
  applyMidiChoice(remote_, choice, settings, prompter_);
  EXPECT_EQ(prompter_.messages, Messages{"Unable to start midi 1: Second"});
  EXPECT_TRUE(remote_.isOpen(0) && remote_.isOpen(2) && !remote_.isOpen(1) && !remote_.isOpen(7));
  EXPECT_EQ(settings.devices, (MidiDevices{0, 1, 2, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1}));
  EXPECT_EQ(settings.controllers, choice.controllers);
  applyMidiChoice(remote_, MidiChoice{}, settings, prompter_);
  EXPECT_FALSE(remote_.anyOpen());
  EXPECT_EQ(settings.devices, MidiSettings{}.devices);
}

TEST_F(MidiSetup, FirstNumberOutOfBoundsIsNamed) {
  std::array<std::string, kRemoteCommandCount> numbers;
  numbers.fill("0");
  numbers[12] = "255";
  EXPECT_FALSE(checkControllers(numbers));
  for (const char* bad : {"256", "-1", "", "x", "1.5", "12 ", "99999999999"}) {
    numbers[3] = numbers[9] = bad;
    const auto fault = checkControllers(numbers);
    ASSERT_TRUE(fault) << bad;
    EXPECT_EQ(fault->command, 3u);
    EXPECT_EQ(fault->message, "Midi command : MidiCommandRecord, must be between 0 and 255");
  }
}

}  // namespace
}  // namespace plumetta
