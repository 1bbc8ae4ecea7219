// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/audio_player.h"

#include <gtest/gtest.h>

#include <thread>

#include "support/fake_wave_out.h"

namespace plumetta {
namespace {

bool silence(void* context, float** channels, int* frames, int* channelCount) noexcept {
  auto& player = **static_cast<AudioPlayer**>(context);
  for (int c = 0; c < *channelCount; ++c) {
    channels[c] = player.channelBuffer(c);
    std::fill_n(channels[c], *frames, 0.0f);
  }
  return true;
}

struct Player : testing::Test {
  FakeWaveOut fake;
  AudioPlayer* itself = &player;
  AudioPlayer player{silence, &itself, fake};
};

TEST_F(Player, StartsAnewOnceALostDeviceIsBack) {
  player.SetOutput(0, 64, 44100);
  fake.fail("prepare", 6);
  EXPECT_TRUE(player.Start());
  while (!player.deviceLost()) std::this_thread::yield();
  EXPECT_EQ(player.errorText(), "error 6");
  fake.fail("open", 2);
  EXPECT_FALSE(player.Start());
  EXPECT_FALSE(player.running());
  EXPECT_EQ(player.errorText(), "error 2");
  fake.errors.clear();
  EXPECT_TRUE(player.Start());
  EXPECT_FALSE(player.deviceLost());
  EXPECT_TRUE(player.Start());
  EXPECT_EQ(fake.devicesOpen(), 1);
  EXPECT_TRUE(player.Stop());
  EXPECT_FALSE(player.running());
}

TEST_F(Player, OtherDriverTakesOverFromOneThatPlays) {
  EXPECT_TRUE(player.Start());
  player.SelectDriver(1);
  EXPECT_FALSE(player.running());
  EXPECT_EQ(fake.devicesOpen(), 0);
  EXPECT_EQ(player.activeDriver().GetDeviceCount(), 0);
  player.SelectDriver(0);
  EXPECT_EQ(player.activeDriver().GetDeviceCount(), 2);
  EXPECT_FALSE(AudioPlayer(nullptr, nullptr, fake).Start());
}

}  // namespace
}  // namespace plumetta
