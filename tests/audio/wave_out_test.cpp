// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/wave_out.h"

#include <gtest/gtest.h>

#include "support/fake_wave_out.h"

namespace plumetta {
namespace {

using std::chrono::milliseconds;

// Hands out buffers whose samples all hold the buffer's number, in 8-bit steps: 128 for the first, and so on.
struct CountingSource {
  std::vector<float> samples = std::vector<float>(32767);
  std::atomic<int> calls{0};
  int frames = 0, channelCount = 0;
  std::function<void(int)> meanwhile = [](int) {};  // goes on during the call of that number

  static bool fill(void* context, float** channels, int* frames, int* channelCount) noexcept {
    auto& own = *static_cast<CountingSource*>(context);
    own.meanwhile(++own.calls);
    const float value = static_cast<float>(own.calls) / 126.0f + 0.001f;
    std::fill(own.samples.begin(), own.samples.end(), value);
    own.frames = *frames;
    own.channelCount = *channelCount;
    channels[0] = channels[1] = own.samples.data();
    return false;  // ignored
  }
};

using Calls = std::vector<std::string>;

struct Session : testing::Test {
  FakeWaveOut fake;
  FakeTimer timer;
  CountingSource source;
  PullSession::Parameters parameters{CountingSource::fill, &source, 1, {2, 44100, 8, 2, 3}, milliseconds{10}};

  // Runs the pull thread's work here; `atSleep` takes the place of what goes on meanwhile.
  int run(PullSession& session, const std::function<void(int)>& atSleep) {
    timer.onSleep = atSleep;
    EXPECT_EQ(session.open(), 0);
    session.run();
    timer.onSleep = [](int) {};
    EXPECT_TRUE(session.waitForEnd(milliseconds{0}));
    return session.error();
  }
};

TEST_F(Session, FillsInRingOrderWhatTheDeviceHasFinished) {
  PullSession session(fake, timer, parameters);
  EXPECT_EQ(run(session,
                [&](int sleep) {
                  if (sleep == 1) fake.play();
                  if (sleep == 3) fake.play(), fake.play();
                  if (sleep == 5) session.requestStop();
                }),
            0);
  EXPECT_EQ(session.close(), 0);
  EXPECT_EQ(fake.calls(),
            (Calls{"open 1",      "prepare 0",   "write 0",   "prepare 1", "write 1",     "prepare 2",
                   "write 2",     "unprepare 0", "prepare 0", "write 0",   "unprepare 1", "prepare 1",
                   "write 1",     "unprepare 2", "prepare 2", "write 2",   "reset",       "unprepare 0",
                   "unprepare 1", "unprepare 2", "close"}));
  EXPECT_EQ(fake.played(),
            (std::vector<uint8_t>{128, 128, 128, 128, 129, 129, 129, 129, 130, 130, 130, 130}));
  EXPECT_EQ(source.frames, 2);
  EXPECT_EQ(source.channelCount, 2);
  EXPECT_EQ(session.underruns(), 0);
}

TEST_F(Session, CountsHowOftenTheDeviceRunsDry) {
  PullSession session(fake, timer, parameters);
  source.meanwhile = [&](int call) {
    if (call == 8) fake.playAll();
  };
  run(session, [&](int sleep) {
    if (sleep == 1) fake.playAll();
    if (sleep == 2 || sleep == 3) fake.play();
    if (sleep == 4) session.requestStop();
  });
  EXPECT_EQ(source.calls, 10);
  EXPECT_EQ(session.underruns(), 2);  // before the fourth buffer and before the eighth
}

TEST_F(Session, EndsByItselfWhenTheDeviceFails) {
  for (const char* operation : {"prepare", "write"}) {
    PullSession session(fake, timer, parameters);
    EXPECT_EQ(run(session,
                  [&](int) {
                    fake.play();
                    fake.fail(operation, 6);
                  }),
              6)
        << operation;
    fake.errors.clear();
    EXPECT_EQ(session.close(), 0);
    const int callsBefore = source.calls;
    EXPECT_EQ(callsBefore % 4, 0) << operation;  // three at the start, the fourth met the failure
  }
}

TEST_F(Session, DeviceThatPlaysNothingMoreIsGivenUp) {
  PullSession session(fake, timer, parameters);
  EXPECT_EQ(run(session,
                [&](int sleep) {
                  ASSERT_LT(sleep, 1000);
                  if (sleep <= 100) fake.play();
                }),
            kDeviceStalled);
  EXPECT_GT(timer.now(), milliseconds{2450});
  EXPECT_LT(timer.now(), milliseconds{2550});
}

TEST_F(Session, BuffersThatNeverComeBackAreWaitedForTwoSeconds) {
  fake.returnsBuffers = false;
  PullSession session(fake, timer, parameters);
  run(session, [&](int) { session.requestStop(); });
  const int before = timer.sleeps();
  EXPECT_EQ(session.close(), 0);
  EXPECT_EQ(timer.sleeps() - before, 200);
}

TEST_F(Session, TwentyFourBitsAnnounceThreeBytesASample) {
  parameters.format.bitsPerSample = 24;
  PullSession session(fake, timer, parameters);
  run(session, [&](int) { fake.play(), session.requestStop(); });
  EXPECT_EQ(fake.played(), std::vector<uint8_t>(2 * 2 * 3, 0));
}

struct WaveOut : testing::Test {
  FakeWaveOut fake;
  FakeTimer timer;
  CountingSource source;

  // The faked time runs as fast as the pull thread does: a device that plays nothing would soon count as
  // dead.
  WaveOut() {
    timer.onSleep = [this](int) { fake.play(); };
  }

  void prepareToPlay(CWaveOut& driver) {
    driver.SetCallback(CountingSource::fill, &source);
    driver.SetParams(44100, 16, 2, 10, 0, 8);
  }
  void waitUntil(const std::function<bool()>& condition) {
    while (!condition()) std::this_thread::yield();
  }
};

TEST_F(WaveOut, TellsDevicesAndChannels) {
  fake.names = {"Speaker", std::string(62, 'x') + "\xC3\xA9"};
  CWaveOut driver(fake, timer);
  EXPECT_EQ(driver.GetDeviceCount(), 2);
  EXPECT_STREQ(driver.GetName(0), "Speaker");
  EXPECT_EQ(driver.GetName(1), std::string(62, 'x'));  // not half a character
  for (int index : {-1, 32}) EXPECT_STREQ(driver.GetName(index), "Speaker");
  EXPECT_EQ(driver.GetDeviceName(1), fake.names[1]);
  EXPECT_EQ(driver.GetChannelCount(), 2);
  const char* expected[] = {"MME Left", "MME Right", "before"};
  for (int channel : {0, 1, 5}) {
    std::string name = "before";
    EXPECT_TRUE(driver.GetChannelName(channel, name));
    EXPECT_EQ(name, expected[std::min(channel, 2)]);
  }
  fake.fail("count", 5);
  EXPECT_EQ(driver.GetDeviceCount(), 0);
  EXPECT_EQ(driver.errorText(), "error 5");
}

TEST_F(WaveOut, KeepsThePreviousValueInPlaceOfOneThatIsNotAcceptable) {
  struct Row {
    int set[6];
    WaveOutFormat format;
    int device;
  };
  const Row rows[] = {
      {{48000, 64, 3, 20, 1, 24}, {2, 48000, 24, 64, 3}, 1},
      {{12000, 0, 9, 200, -1, 12}, {2, 48000, 24, 64, 3}, 1},
      {{192000, 32768, 1, 0, 0, 32}, {2, 192000, 24, 64, 3}, 0},
      {{11025, 1, 8, 1, 0, 8}, {2, 11025, 8, 1, 8}, 0},
      {{0, 32767, 2, 199, 0, 16}, {2, 11025, 16, 32767, 2}, 0},
  };
  CWaveOut driver(fake, timer);
  driver.SetCallback(CountingSource::fill, &source);
  for (const Row& row : rows) {
    const auto& p = row.set;
    EXPECT_TRUE(driver.SetParams(p[0], p[1], p[2], p[3], p[4], p[5]));
    ASSERT_TRUE(driver.Start());
    EXPECT_TRUE(driver.Stop());
    EXPECT_EQ(std::tie(fake.format.sampleRate, fake.format.bitsPerSample, fake.format.bufferFrames,
                       fake.format.bufferCount),
              std::tie(row.format.sampleRate, row.format.bitsPerSample, row.format.bufferFrames,
                       row.format.bufferCount));
    const Calls calls = fake.calls();
    EXPECT_NE(std::find(calls.begin(), calls.end(), "open " + std::to_string(row.device)), calls.end());
  }
}

TEST_F(WaveOut, StartsOnlyWithCallbackAndParametersOnADeviceThatTakesThem) {
  CWaveOut driver(fake, timer);
  EXPECT_FALSE(driver.Start());
  driver.SetCallback(CountingSource::fill, &source);
  EXPECT_FALSE(driver.Start());
  EXPECT_EQ(driver.errorText(), "");
  fake.refusedRates = {96000};
  driver.SetParams(96000, 16, 2, 10, 0, 8);
  EXPECT_FALSE(driver.Start());
  EXPECT_EQ(driver.errorText(), "error 32");
  EXPECT_EQ(source.calls, 0);
  driver.SetParams(44100, 16, 2, 10, 0, 8);
  EXPECT_TRUE(driver.Start());
  EXPECT_TRUE(driver.Start());
  EXPECT_EQ(fake.devicesOpen(), 1);
  EXPECT_EQ(driver.errorText(), "");
  EXPECT_TRUE(driver.Stop());
  EXPECT_TRUE(driver.Stop());
  EXPECT_EQ(fake.devicesOpen() + fake.headersAlive(), 0);
}

TEST_F(WaveOut, LostDeviceIsNoticedAndPlaysAgainAfterwards) {
  CWaveOut driver(fake, timer);
  prepareToPlay(driver);
  ASSERT_TRUE(driver.Start());
  waitUntil([&] { return source.calls > 10; });
  EXPECT_FALSE(driver.deviceLost());
  fake.fail("write", 6);
  waitUntil([&] { return driver.deviceLost(); });
  EXPECT_EQ(driver.errorText(), "error 6");
  EXPECT_TRUE(driver.Stop());
  EXPECT_FALSE(driver.deviceLost());
  fake.fail("write", 0);
  const int before = source.calls;
  ASSERT_TRUE(driver.Start());
  waitUntil([&] { return source.calls > before + 10; });
  EXPECT_FALSE(driver.deviceLost());
}

TEST_F(WaveOut, DeviceThatCannotBeClosedKeepsItsBuffersUntilItCan) {
  CWaveOut driver(fake, timer);
  prepareToPlay(driver);
  for (const char* operation : {"reset", "close"}) {
    ASSERT_TRUE(driver.Start());
    fake.fail(operation, 5);
    fake.fail("close", 5);
    EXPECT_FALSE(driver.Stop()) << operation;
    EXPECT_EQ(driver.errorText(), "error 5");
    EXPECT_EQ(fake.headersAlive(), 2);
    fake.fail(operation, 0);
    fake.fail("close", 0);
  }
  EXPECT_TRUE(driver.Start());
  EXPECT_EQ(fake.devicesOpen(), 1);
  EXPECT_TRUE(driver.Stop());
  EXPECT_EQ(fake.devicesOpen() + fake.headersAlive(), 0);
}

TEST_F(WaveOut, ThreadThatHangsInTheSystemIsLeftBehind) {
  fake.hangsInWrite = true;
  {
    CWaveOut driver(fake, timer);
    prepareToPlay(driver);
    ASSERT_TRUE(driver.Start());
    waitUntil([&] { return source.calls == 1; });
    EXPECT_FALSE(driver.Stop());
    EXPECT_EQ(driver.errorText(), "The sound device does not answer.");
  }
  EXPECT_EQ(fake.headersAlive(), 2);
  fake.hangsInWrite = false;
  waitUntil([&] { return fake.headersAlive() + fake.devicesOpen() == 0; });
  EXPECT_EQ(source.calls, 1);
}

TEST_F(WaveOut, CallbackChangedInMidPlayDoesNotLoseTheThread) {
  CWaveOut driver(fake, timer);
  prepareToPlay(driver);
  ASSERT_TRUE(driver.Start());
  driver.SetCallback(CountingSource::fill, &source);
  ASSERT_TRUE(driver.Start());
  EXPECT_EQ(fake.devicesOpen(), 1);
}

}  // namespace
}  // namespace plumetta
