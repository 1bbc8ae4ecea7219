// SPDX-License-Identifier: GPL-3.0-or-later
// Capture through a device that does what a test tells it.
#include <gtest/gtest.h>

#include <cmath>

#include "audio/input_capture.h"
#include "audio/sample_input.h"
#include "support/fake_wave_in.h"

namespace plumetta {
namespace {

TEST(CapturedSamples, BecomeFloats) {
  const struct {
    int bits;
    std::vector<uint8_t> bytes;
    float expected;
  } cases[] = {
      {8, {0}, -1.0f},
      {8, {255}, 1.0f},
      {8, {191}, 63.5f / 127.5f},
      {16, {0x00, 0x80}, -1.0f},
      {16, {0xFF, 0x7F}, 32767.0f / 32768.0f},
      {16, {0xFF, 0xFF}, -1.0f / 32768.0f},
      {24, {0x00, 0x00, 0x80}, -1.0f},
      {24, {0xFF, 0xFF, 0x7F}, 8388607.0f / 8388608.0f},
      {24, {0x01, 0x00, 0x00}, 1.0f / 8388608.0f},
      {32, {1, 2, 3, 4}, 9.0f},  // no depth that is captured: nothing happens
  };
  for (const auto& each : cases) {
    float value = 9.0f;
    convertCaptured(each.bytes.data(), 1, each.bits, &value);
    EXPECT_EQ(value, each.expected) << each.bits;
  }
}

// A second passes in each pass of the thread that asks.
struct FastTimer : PollTimer {
  std::chrono::milliseconds now() noexcept override { return std::chrono::milliseconds(time); }
  void sleep(std::chrono::milliseconds) noexcept override {
    time += 1000;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  int64_t time = 0;
};

class WaveIn : public testing::Test {
 protected:
  bool start(CWaveIn& which) {
    which.SetCallback(onBlock, this);
    which.SetParams(44100, 16, floats.data(), 4, 4, 2);
    return which.Start(0);
  }
  bool start() { return start(input); }
  bool becomesLost() {
    return FakeWaveIn::eventually([this] { return input.GetState() == CWaveIn::kLost; });
  }
  static void onBlock(void* self, const WaveInBlock* block) noexcept {
    auto* own = static_cast<WaveIn*>(self);
    own->last = *block;
    ++own->blocks;
  }

  StillTimer timer;
  FakeWaveIn fake;
  std::vector<float> floats = std::vector<float>(8);
  WaveInBlock last{};
  int blocks = 0;
  CWaveIn input{fake, timer};
};

TEST_F(WaveIn, DeliversWholeBlocksFromOneStartToOneStop) {
  EXPECT_EQ(input.GetState(), CWaveIn::kStopped);
  EXPECT_FALSE(input.Stop());
  ASSERT_TRUE(start());
  EXPECT_EQ(input.GetState(), CWaveIn::kRunning);
  // More than there are buffers, so that each comes back to the device.
  for (int i = 1; i <= 20; ++i) {
    ASSERT_TRUE(fake.deliver16(static_cast<int16_t>(i * 1024), 4));
    EXPECT_EQ(floats, std::vector<float>(8, static_cast<float>(i) / 32));
  }
  // The device says that it has recorded less: all frames are converted all the same.
  ASSERT_TRUE(fake.deliver({0x00, 0x80}));
  EXPECT_EQ(floats[0], -1.0f);
  EXPECT_EQ(blocks, 21);
  EXPECT_EQ(std::vector({last.frames, last.bitDepth, last.channels}), std::vector({4, 16, 2}));

  EXPECT_TRUE(input.Stop());
  EXPECT_EQ(blocks, 21);  // though the device gave its buffers back
  EXPECT_FALSE(input.Stop());
  EXPECT_FALSE(input.Start(0)) << "the callback must be installed anew";
  ASSERT_TRUE(start());
  EXPECT_FALSE(input.Start(0)) << "starting stops, and stopping forgets the callback";
  EXPECT_EQ(fake.opened, fake.closed);
}

TEST_F(WaveIn, TakesAcceptableParametersAlone) {
  const struct {
    int rate, bits, frames, count, channels;
    WaveInFormat expected;
  } cases[] = {
      {48000, 24, 2, 2, 1, {1, 48000, 24, 2}},
      {192000, 8, 3, 16, 2, {2, 192000, 8, 3}},
      {88200, 12, 0, 17, 0, {2, 192000, 8, 3}},
      {0, 32, -1, 1, -2, {2, 192000, 8, 3}},
  };
  for (const auto& each : cases) {
    input.SetCallback(onBlock, this);
    input.SetParams(each.rate, each.bits, floats.data(), each.frames, each.count, each.channels);
    ASSERT_TRUE(input.Start(0));
    EXPECT_EQ(fake.format.sampleRate, each.expected.sampleRate);
    EXPECT_EQ(fake.format.bitsPerSample, each.expected.bitsPerSample);
    EXPECT_EQ(fake.format.bufferFrames, each.expected.bufferFrames);
    EXPECT_EQ(fake.format.channels, each.expected.channels);
    input.Stop();
  }
}

TEST_F(WaveIn, StartThatFailsLeavesTheDeviceClosed) {
  for (std::atomic<int>* error : {&fake.openError, &fake.queueError, &fake.startError}) {
    *error = FakeWaveIn::kRefused;
    EXPECT_FALSE(start());
    EXPECT_EQ(input.GetState(), CWaveIn::kStopped);
    EXPECT_EQ(input.errorText(), "fake error 7");
    EXPECT_EQ(fake.opened, fake.closed);
    *error = FakeWaveIn::kOk;
  }
  EXPECT_TRUE(start());
}

TEST_F(WaveIn, DeviceThatIsLostIsNoticedHoweverItGoes) {
  ASSERT_TRUE(start());
  fake.queueError = FakeWaveIn::kGone;
  fake.deliver16(1, 4);
  EXPECT_TRUE(becomesLost());
  EXPECT_TRUE(input.Stop());
  fake.queueError = FakeWaveIn::kOk;
  ASSERT_TRUE(start());
  fake.failureTold = FakeWaveIn::kGone;
  EXPECT_TRUE(becomesLost());
  EXPECT_EQ(input.errorText(), "fake error 8");
  EXPECT_TRUE(input.Stop());
  EXPECT_EQ(input.errorText(), "fake error 8");
}

TEST_F(WaveIn, DeviceThatFallsSilentIsNoticed) {
  FastTimer fast;
  CWaveIn silent(fake, fast);
  ASSERT_TRUE(start(silent));
  EXPECT_TRUE(FakeWaveIn::eventually([&] { return silent.GetState() == CWaveIn::kLost; }));
  EXPECT_EQ(silent.errorText(), "The sound device does not answer.");
}

TEST_F(WaveIn, BuffersOutliveADeviceThatRefusesToClose) {
  fake.refusesToClose = true;
  ASSERT_TRUE(start());
  EXPECT_TRUE(input.Stop());
  fake.refusesToClose = false;
  ASSERT_TRUE(start());
  EXPECT_EQ(fake.closed, 1);  // the next start has closed it
}

TEST_F(WaveIn, TellsWhatDevicesCan) {
  for (const auto& [rate, supported] : {std::pair{11025, false},
                                        {22050, false},
                                        {44100, true},
                                        {48000, false},
                                        {88200, false},
                                        {96000, true},
                                        {192000, false}}) {
    EXPECT_EQ(input.IsRateSupported(0, rate), supported) << rate;
  }
  fake.formats = 0xFFFFFFFF;
  EXPECT_FALSE(input.IsRateSupported(0, 192000));
  EXPECT_FALSE(input.IsRateSupported(1, 44100));
  std::string error;
  EXPECT_EQ(waveInDeviceNames(fake, error), std::vector<std::string>{"Fake input"});
  fake.countError = FakeWaveIn::kGone;
  EXPECT_TRUE(waveInDeviceNames(fake, error).empty());
  EXPECT_EQ(error, "fake error 8");
}

// ---- Takes ----------------------------------------------------------------------------------------------

// A disk that takes nothing until it is let.
struct SlowDisk {
  std::atomic<bool> free{false};
  std::vector<float> written;
};

struct SlowFile : File {
  explicit SlowFile(SlowDisk& owner) : disk(owner) {}
  size_t read(void*, size_t, std::error_code&) override { return 0; }
  std::error_code write(const void* source, size_t bytes) override {
    FakeWaveIn::eventually([this] { return disk.free.load(); });
    const auto* floats = static_cast<const float*>(source);
    disk.written.insert(disk.written.end(), floats, floats + bytes / sizeof(float));
    return {};
  }
  std::error_code seek(uint64_t) override { return {}; }
  uint64_t size() const override { return 0; }
  std::error_code sync() override { return {}; }
  std::error_code close() override { return {}; }
  SlowDisk& disk;
};

TEST(Take, SlowDiskHoldsUpNobodyAndLosesNothing) {
  FakeWaveIn fake;
  SlowDisk disk;
  StillTimer timer;
  InputCapture capture(fake, timer);
  ASSERT_TRUE(capture.start({0, 44100, 16, 64}));
  ASSERT_TRUE(capture.beginTake(std::make_unique<SlowFile>(disk)));
  for (int i = 1; i <= 100; ++i) ASSERT_TRUE(fake.deliver16(static_cast<int16_t>(i), 64));
  EXPECT_EQ(capture.framesTaken(), 6400);
  EXPECT_EQ(capture.takePeak(1), 100.0f / 32768);
  EXPECT_EQ(capture.takePeak(1), 0.0f);
  disk.free = true;
  EXPECT_FALSE(capture.endTake());
  fake.deliver16(7, 64);  // the input goes on without the take
  ASSERT_EQ(disk.written.size(), 12800u);
  for (size_t i = 0; i < disk.written.size(); ++i) {
    ASSERT_EQ(disk.written[i], static_cast<float>(i / 128 + 1) / 32768) << i;
  }
}

TEST(Take, EndsWhereMemoryIsFullInsteadOfLosingFrames) {
  SlowDisk disk;
  StillTimer timer;
  TakeWriter writer(std::make_unique<SlowFile>(disk), 2, 8, timer);
  ASSERT_TRUE(writer.start());
  const std::vector<float> block(8, 0.5f);
  EXPECT_TRUE(writer.write(block.data(), 4));
  EXPECT_TRUE(writer.write(block.data(), 4));
  EXPECT_FALSE(writer.write(block.data(), 4));
  EXPECT_TRUE(writer.failed());
  disk.free = true;
  EXPECT_FALSE(writer.write(block.data(), 1)) << "a gap may not follow";
  writer.finish();
  EXPECT_EQ(disk.written, std::vector<float>(16, 0.5f));
}

}  // namespace
}  // namespace plumetta
