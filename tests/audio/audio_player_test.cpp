// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/audio_player.h"

#include <gtest/gtest.h>

#include "support/fake_wave_out.h"
#include "support/temporary_folder.h"

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
  TemporaryFolder folder;
  AudioPlayer* itself = &player;
  AudioPlayer player{silence, &itself, fake};

  void waitUntilLost() {
    while (!player.deviceLost()) {
      fake.play();
      std::this_thread::yield();
    }
  }
};

TEST_F(Player, StartsAnewOnceALostDeviceIsBack) {
  player.SetOutput(0, 64, 44100);
  EXPECT_TRUE(player.Start());
  fake.fail("prepare", 6);
  waitUntilLost();
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

TEST_F(Player, SettingsTakeWhatIsAcceptable) {
  struct Row {
    const char* text;
    int device, frames, rate, bits;
  };
  const Row rows[] = {
      {"AudioOutId=1\nAudioOutSampleRate=96000\nAudioOutBitDepth=8\nAudioOutBufferSize(sample)=512\n", 1, 512,
       96000, 8},
      {"", 1, 512, 96000, 8},
      {"AudioOutSampleRate=12000\nAudioOutBitDepth=24\nAudioOutBufferSize(sample)=0\n", 1, 4096, 96000, 8},
      {"AudioOutId=0\nAudioOutBitDepth=16\nAudioOutBufferSize(sample)=5000\n", 0, 4096, 96000, 16},
  };
  for (const Row& row : rows) {
    const std::string file = folder.file("in.cfg"), saved = folder.file("out.cfg");
    std::ofstream(file) << "[General]\n" << row.text;
    player.LoadSettings(file);
    int device = 0, frames = 0, rate = 0;
    player.GetOutput(device, frames, rate);
    EXPECT_EQ(std::tie(device, frames, rate), std::tie(row.device, row.frames, row.rate)) << row.text;
    ASSERT_TRUE(player.Start()) << row.text;
    EXPECT_EQ(fake.format.bitsPerSample, row.bits) << row.text;
    player.Stop();
    ASSERT_TRUE(player.SaveSettings(saved));
    AudioPlayer other(silence, nullptr, fake);
    other.LoadSettings(saved);
    other.GetOutput(device, frames, rate);
    EXPECT_EQ(std::tie(device, frames, rate), std::tie(row.device, row.frames, row.rate)) << row.text;
  }
  EXPECT_FALSE(player.SaveSettings(folder.file("no/such/folder.cfg")));
}

}  // namespace
}  // namespace plumetta
