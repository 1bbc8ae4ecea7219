// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "audio/asio_interface.h"
#include "audio/asio_report.h"
#include "audio/asio_sample_type.h"
#include "support/fake_asio.h"
#include "support/fake_wave_out.h"
#include "support/forbid_allocation.h"

namespace plumetta {
namespace {

using std::chrono::milliseconds;
using Calls = std::vector<std::string>;

// A source that counts its frames: channel c of frame n is (n + 1000 c) / 32768.
struct Counter {
  std::vector<std::array<float, kMaxOutputFrames>> room{kMaxOutputChannels};
  int next = 0;
  std::atomic<int> mostFrames{0}, mostChannels{0}, calls{0};

  static bool fill(void* self, float** channels, int* frames, int* channelCount) noexcept {
    const ForbidAllocation forbid;
    auto& counter = *static_cast<Counter*>(self);
    counter.mostFrames = std::max<int>(counter.mostFrames, *frames);
    counter.mostChannels = std::max<int>(counter.mostChannels, *channelCount);
    ++counter.calls;
    for (int c = 0; c < *channelCount; ++c) {
      float* out = channels[c] = counter.room[static_cast<size_t>(c)].data();
      for (int i = 0; i < *frames; ++i) {
        out[i] = static_cast<float>(counter.next + i + 1000 * c) / 32768.0f;
      }
    }
    counter.next += *frames;
    return true;
  }
};

struct Asio : testing::Test {
  FakeTimer timer;
  FakeAsio fake;  // whose drivers may hang until it goes
  Counter counter;
  CASIOInterface asio{fake, timer};

  // No time passes but that in which a driver hangs, so that no other is ever found too slow.
  Asio() {
    fake.plan.whileItHangs = [this] { timer.sleep(milliseconds{20}); };
  }

  bool start(int rate = 44100, int device = 0) {
    asio.SetCallback(Counter::fill, &counter);
    asio.SetParams(rate, 0, 0, 0, device, 16);
    return asio.Start();
  }
  std::vector<int16_t> played16(int channel) {
    const auto bytes = fake.driver().played()[channel];
    std::vector<int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), bytes.size());
    return samples;
  }
};

TEST(AsioList, HoldsDriversWhoseLibraryIsThere) {
  FakeAsio fake;
  fake.addDriver("Lost", "{00000000-0000-0000-0000-000000000002}", "two.dll");
  fake.files.erase("two.dll");
  fake.addDriver("No id", "somebody", "three.dll");
  fake.addDriver("Third", "{0A1b2C3d-4e5F-6071-8293-a4b5c6d7e8f9}", "four.dll");
  fake.machine["software\\asio\\Third"]["description"] = "Well known";
  fake.machine["software\\asio\\Unregistered"]["clsid"] = "{00000000-0000-0000-0000-000000000003}";
  fake.machine["software\\asio\\Empty"];
  const auto drivers = listAsioDrivers(fake);
  ASSERT_EQ(drivers.size(), 2u);
  EXPECT_EQ(drivers[0].name, "First");
  EXPECT_EQ(drivers[1].name, "Well known");
  EXPECT_EQ(drivers[1].path, "four.dll");
  const AsioClassId id{0x0A1B2C3D, 0x4E5F, 0x6071, {0x82, 0x93, 0xA4, 0xB5, 0xC6, 0xD7, 0xE8, 0xF9}};
  EXPECT_EQ(drivers[1].classId, id);
}

TEST(AsioSamples, AreStoredAsEachTypeWantsThem) {
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  const float values[] = {1.5f, -1.5f, 0.5f, kNone, 2.5f / 32768, -1.5f / 2147483648.0f};
  struct Row {
    int type;
    const char* hex;  // the rest stays "ee"
  };
  const Row rows[] = {
      {16, "df7f21800040000002000000"},
      {17, "3bdf7fc42080000040000000800200ffffff"},
      {18, "803bdf7f80c42080000000400000000000800200feffffff"},
      {19, "77be7f3f77be7fbf0000003f000000000000a038000040b0"},
      {20,
       "000000e0cef7ef3f000000e0cef7efbf000000000000e03f0000000000000000000000000000143f00000000000008be"},
      {0, "000000000000000000000000"},
      {1, "000000000000000000000000000000000000"},
      {2, "000000000000000000000000000000000000000000000000"},
      {8, ""},
      {26, ""},
      {99, ""},
  };
  for (const Row& row : rows) {
    std::vector<uint8_t> memory(49, 0xEE);
    // In two turns, as long buffers are filled, and at an odd address.
    writeAsioSamples(row.type, values, 0, 2, memory.data() + 1);
    writeAsioSamples(row.type, values + 2, 2, 4, memory.data() + 1);
    std::string hex;
    for (size_t i = 1; i < memory.size(); ++i) {
      char digits[3];
      std::snprintf(digits, sizeof digits, "%02x", memory[i]);
      hex += digits;
    }
    EXPECT_EQ(hex, row.hex + std::string(96, 'e').substr(std::strlen(row.hex))) << row.type;
  }
}

TEST_F(Asio, PlaysTheCallbackThroughDoubleBuffers) {
  ASSERT_TRUE(start(48000));
  for (int i = 0; i < 3; ++i) fake.driver().switchBuffers(i != 1);
  const auto right = played16(1);
  ASSERT_EQ(right.size(), 3u * 64);
  for (int i = 0; i < 3 * 64; ++i) ASSERT_EQ(right[static_cast<size_t>(i)], 1000 + i);
  EXPECT_EQ(fake.driver().outputReadies, 1 + 3) << "once as a question";
  EXPECT_EQ(asio.playedRate(), 48000);
  EXPECT_EQ(asio.latencyFrames(), 66);
  EXPECT_EQ(asio.GetChannelCount(), 2);
  std::string name;
  EXPECT_TRUE(asio.GetChannelName(1, name));
  EXPECT_EQ(name, "Out 2");
  EXPECT_FALSE(asio.GetChannelName(2, name));
  EXPECT_EQ(fake.drivers.size(), 1u) << "a driver that plays is asked itself";
  EXPECT_TRUE(asio.Stop());
  const Calls calls = fake.driver().calls();
  EXPECT_EQ(Calls(calls.end() - 3, calls.end()), (Calls{"stop", "disposeBuffers", "Release"}));
  EXPECT_EQ(fake.driver().references(), 0);
  fake.driver().callbacks()->bufferSwitch(0, 1);  // too late, and nobody's
  EXPECT_EQ(counter.calls, 3);
}

TEST_F(Asio, ManyOutputsAndLongBuffersAreFilledInTurns) {
  fake.plan.inputs = 33;
  fake.plan.outputs = 40;
  fake.plan.frames = 10000;
  fake.plan.takesOutputReady = false;
  ASSERT_TRUE(start());
  fake.driver().switchBuffers();
  const Calls calls = fake.driver().calls();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "createBuffers 64"), 1);
  EXPECT_EQ(counter.mostFrames, 4096);
  EXPECT_EQ(counter.mostChannels, 16);
  const auto last = played16(15);
  ASSERT_EQ(last.size(), 10000u);
  for (int i : {0, 4095, 4096, 8192, 9999}) EXPECT_EQ(last[static_cast<size_t>(i)], 15000 + i);
  EXPECT_EQ(played16(16), std::vector<int16_t>(10000));
  EXPECT_EQ(played16(31), std::vector<int16_t>(10000));
  EXPECT_EQ(fake.driver().played().size(), 32u);
  EXPECT_EQ(fake.driver().outputReadies, 1);
}

TEST_F(Asio, EachStepThatFailsSaysSoAndLeavesEverythingReady) {
  struct Row {
    const char* operation;
    const char* message;
    bool disposes;
  };
  const Row rows[] = {
      {"init", "Unable to init", false},
      {"getChannels", "Unable to static init", false},
      {"getBufferSize", "Unable to static init", false},
      {"createBuffers", "Unable to create buffer", false},
      {"getChannelInfo", "Unable to create buffer", true},
      {"getLatencies", "Unable to create buffer", true},
      {"start", "Unable to start", true},
  };
  for (const Row& row : rows) {
    for (auto* fault : {&fake.plan.fails, &fake.plan.throws, &fake.plan.hangs}) {
      fault->insert(row.operation);
      fake.plan.released = false;
      EXPECT_TRUE(start()) << row.operation;
      EXPECT_EQ(asio.errorText(), row.message) << row.operation;
      EXPECT_TRUE(asio.Start()) << "counts as running until it is stopped";
      FakeAsioDriver& faulty = fake.driver();
      const bool hung = fault == &fake.plan.hangs;
      EXPECT_EQ(asio.Stop(), !hung);
      fake.plan.released = true;
      while (fake.threads > 0) std::this_thread::sleep_for(milliseconds{1});
      fault->clear();
      const Calls calls = faulty.calls();
      EXPECT_EQ(calls.back(), "Release") << row.operation << ", also once one that hung comes back";
      // One that hung may have done its work in the end.
      const bool disposed = calls[calls.size() - 2] == "disposeBuffers";
      EXPECT_TRUE(hung || disposed == row.disposes) << row.operation;
      ASSERT_TRUE(start()) << row.operation;
      EXPECT_EQ(asio.errorText(), "");
      const int before = counter.calls;
      if (faulty.callbacks() != nullptr) faulty.callbacks()->bufferSwitch(0, 1);
      EXPECT_EQ(counter.calls, before) << "only the driver that is loaded is listened to";
      fake.driver().switchBuffers();
      EXPECT_EQ(counter.calls, before + 1);
      EXPECT_TRUE(asio.Stop());
    }
  }
}

TEST_F(Asio, DriverThatCannotBeLoadedStartsNothing) {
  EXPECT_FALSE(asio.Start()) << "nothing is set";
  EXPECT_FALSE(start(44100, 1));
  EXPECT_EQ(asio.errorText(), "There is no ASIO driver 1.");
  fake.createError = static_cast<int32_t>(0x80040154);
  EXPECT_FALSE(start());
  EXPECT_EQ(asio.errorText(), "The ASIO driver First can't be loaded (error 80040154).");
  EXPECT_EQ(asio.GetChannelCount(), 0);
  fake.createError = 0;
  EXPECT_TRUE(start());
}

TEST_F(Asio, TakesTheRateThatTheDriverTakes) {
  fake.plan.refusedRates = {96000};
  struct Row {
    int asked;
    double external;
    const char* set;
    int played;
  };
  const Row rows[] = {{88200, 0, "setSampleRate 88200", 88200},
                      {11025, 0, "setSampleRate 88200", 88200},
                      {192000, 0, "setSampleRate 88200", 88200},
                      {96000, 0, "setSampleRate 44100", 44100},
                      {22050, 48000, "setSampleRate 22050", 48000}};
  for (const Row& row : rows) {
    fake.plan.externalRate = row.external;
    ASSERT_TRUE(start(row.asked));
    const Calls calls = fake.driver().calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), row.set), 1) << row.asked;
    EXPECT_EQ(asio.playedRate(), row.played);
    EXPECT_EQ(asio.errorText(), "");
    asio.Stop();
  }
}

TEST_F(Asio, AnswersTheDriversMessages) {
  ASSERT_TRUE(start());
  const auto answer = fake.driver().callbacks()->message;
  const int answers[] = {0, 0, 2, 1, 0, 1, 1, 1, 0, 0, 0};  // from selector 0
  for (int i = 0; i < 11; ++i) EXPECT_EQ(answer(i, 0, nullptr, nullptr), answers[i]) << i;
  const int supported[] = {0, 0, 1, 1, 0, 1, 1, 1, 1, 1, 0};
  for (int i = 0; i < 11; ++i) EXPECT_EQ(answer(1, i, nullptr, nullptr), supported[i]) << i;
}

TEST_F(Asio, IsLostWhenTheDriverStopsAsking) {
  ASSERT_TRUE(start());
  const auto wait = [&](int time) {
    for (int i = 0; i < time; i += 100) {
      timer.sleep(milliseconds{100});
      asio.deviceLost();
    }
    return asio.deviceLost();
  };
  EXPECT_FALSE(wait(3900));
  fake.driver().switchBuffers();
  EXPECT_FALSE(wait(1500));
  fake.driver().switchBuffers();
  EXPECT_TRUE(wait(1800));
  EXPECT_EQ(asio.errorText(), "The ASIO driver does not answer.");
  asio.Stop();
  EXPECT_FALSE(asio.deviceLost());
}

TEST_F(Asio, ReportListsEveryChannelWithBuffers) {
  fake.plan.inputs = 1;
  fake.plan.outputs = 10;
  fake.plan.types = {18, 2, 77};
  asio.SetParams(48000, 0, 0, 0, 0, 16);
  const std::string report = asio.testReport(0);
  const std::string head =
      "Plumetta ASIO test file:\nTest driver\nVersion:012A\nError: all is well\nBuffer min size: 16\n"
      "Buffer max size: 8192\nBuffer pref size: 64\nBuffer granular: -1\nSample rate: 48000.000000\n"
      "Input channel: 1\nOutput channel: 10\nInput latency: 65\nOutput latency: 66\n"
      "*************************************\n"
      "input  00 In 1 Sample type: ASIOSTInt32LSB Group: 0\n"
      "output 01 Out 1 Sample type: ASIOSTInt32LSB Group: 0\n"
      "output 02 Out 2 Sample type: ASIOSTInt32MSB Group: 0\n"
      "output 03 Out 3 Sample type: unknown Group: 0\n";
  const std::string end =
      "output 10 Out 10 Sample type: ASIOSTInt32LSB Group: 1\n*************************************\n";
  EXPECT_EQ(report.substr(0, head.size()), head);
  EXPECT_TRUE(report.ends_with(end));
  EXPECT_EQ(fake.driver().calls().back(), "Release");
  fake.plan.fails = {"init"};
  EXPECT_TRUE(asio.testReport(0).starts_with("Plumetta ASIO test file:\nNo ASIO Driver\nVersion:0000\n"));
  EXPECT_EQ(asio.errorText(), "Unable to init");
}

TEST_F(Asio, ControlPanelStopsPlayingAndMayTakeItsTime) {
  ASSERT_TRUE(start());
  fake.plan.hangs = {"controlPanel"};
  int asked = 0;
  const auto goOn = [&] {
    fake.plan.released = ++asked >= 50;
    return true;
  };
  EXPECT_TRUE(asio.OpenControlPanel(0, goOn)) << "longer than any other call may take";
  EXPECT_EQ(fake.drivers.front()->calls().back(), "Release");
  EXPECT_EQ(fake.driver().calls(), (Calls{"init", "controlPanel", "Release"}));
  fake.plan.released = false;
  EXPECT_FALSE(asio.OpenControlPanel(0, [] { return false; }));
  EXPECT_EQ(asio.errorText(), "The ASIO driver does not answer.");
}

// A driver's thread that never pauses, whatever is started and stopped meanwhile.
TEST_F(Asio, DriverMayPullAtAnyTime) {
  ASSERT_TRUE(start());
  std::atomic<AsioCallbacks*> callbacks{fake.driver().callbacks()};
  std::atomic<bool> over{false};
  std::thread pulling([&] {
    for (int i = 0; !over; ++i) callbacks.load()->bufferSwitch(i % 2, 1);
  });
  for (int i = 0; i < 30; ++i) {
    while (counter.calls < 5 * i) std::this_thread::yield();
    ASSERT_TRUE(asio.Stop());
    const int stopped = counter.calls;
    std::this_thread::sleep_for(milliseconds{1});
    EXPECT_EQ(counter.calls, stopped);
    ASSERT_TRUE(start());
    callbacks = fake.driver().callbacks();
  }
  over = true;
  pulling.join();
}

}  // namespace
}  // namespace plumetta
