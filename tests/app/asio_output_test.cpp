// SPDX-License-Identifier: GPL-3.0-or-later
// What a person is told of an ASIO driver, and what playing through one does to the application.
#include <gtest/gtest.h>

#include <fstream>

#include "app/application.h"
#include "support/fake_asio.h"
#include "support/fake_wave_out.h"
#include "support/recording_prompter.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

using Messages = std::vector<std::string>;

struct LateProcessor : BlockProcessor {
  void setSampleRate(int) override {}
  int64_t latencyFrames() const override { return 100; }
  void setPosition(double) noexcept override {}
  void setPlaying(bool) noexcept override {}
  void process(float**, int, int) noexcept override {}
};

struct AsioOutput : testing::Test {
  TemporaryFolder folder;
  RecordingPrompter prompter;
  FakeWaveOut waveOut;
  FakeAsio asio;
  Application app{prompter, nativeFileSystem(), folder.file("home"), waveOut, asio};
  CPlumettaDoc* doc = app.newDocument(44100, 1, 16, 44100, 1);

  AsioOutput() { app.settings().output.asio = true; }

  std::vector<std::string> told() { return std::exchange(prompter.messages, {}); }
};

TEST_F(AsioOutput, PlaysAtTheRateThatTheDriverReallyHas) {
  asio.plan.refusedRates = {96000};
  asio.plan.outputs = 20;
  OutputSettings& output = app.settings().output;
  output.sampleRate = 96000;
  EXPECT_EQ(app.output().channelCount(output), 20) << "before anything plays";
  ASSERT_TRUE(app.transport().play(doc));
  EXPECT_EQ(app.transport().controls().outputRate, 44100);
  for (int i = 0; i < 10; ++i) asio.driver().switchBuffers();
  EXPECT_EQ(doc->playback().playCursor, 10 * 64) << "not slower, as it would be for 96000";
  EXPECT_DOUBLE_EQ(app.output().latency(), 66.0 / 44100);
  LateProcessor rack;
  app.playbackEngine().setRack(&rack);
  EXPECT_DOUBLE_EQ(app.output().latency(), 66.0 / 44100) << "nothing goes through it";
  app.setRackOn(true);
  EXPECT_DOUBLE_EQ(app.output().latency(), 166.0 / 44100);
  app.playbackEngine().setRack(nullptr);
  EXPECT_EQ(told(), Messages{});
  app.output().stop();
  EXPECT_EQ(asio.driver().calls().back(), "Release");
}

TEST_F(AsioOutput, DriverThatFailsIsToldOfOnceAndPlayIsRefused) {
  asio.plan.fails = {"start"};
  EXPECT_FALSE(app.transport().play(doc));
  EXPECT_EQ(told(), Messages{"Unable to start"});
  EXPECT_FALSE(app.transport().controls().playing);
  EXPECT_EQ(asio.driver().calls().back(), "Release");
  app.settings().output.deviceId = 3;
  EXPECT_FALSE(app.transport().play(doc));
  EXPECT_EQ(told(), Messages{"Unable to start the audio output\nThere is no ASIO driver 3."});
  asio.plan.fails.clear();
  app.settings().output.deviceId = 0;
  EXPECT_TRUE(app.transport().play(doc)) << "everything is ready for another attempt";
  EXPECT_EQ(told(), Messages{});
}

TEST_F(AsioOutput, ReportAndPanelSayWhatWentWrong) {
  using Outcome = OutputDevice::ReportOutcome;
  struct Row {
    const char* fails;
    int driver;
    const char* file;
    Outcome outcome;
    Messages messages;
    bool written;
  };
  const std::string missing = folder.file("no/such");
  const Row rows[] = {
      {"", 0, "whole", Outcome::complete, {}, true},
      {"init", 0, "part", Outcome::driverFailed, {"Unable to init"}, true},
      {"", 1, "none", Outcome::driverFailed, {"There is no ASIO driver 1."}, false},
      {"", 0, "no/such", Outcome::fileError, {}, false},
  };
  for (const Row& row : rows) {
    asio.plan.fails = {row.fails};
    const std::string path = folder.file(row.file);
    EXPECT_EQ(app.output().writeAsioReport(app.files(), row.driver, app.settings().output, path),
              row.outcome);
    Messages messages = told();
    if (row.outcome == Outcome::fileError) {
      ASSERT_EQ(messages.size(), 1u);
      EXPECT_TRUE(messages[0].starts_with("Unable to save " + missing + "\n")) << messages[0];
    } else {
      EXPECT_EQ(messages, row.messages) << row.file;
    }
    EXPECT_EQ(std::ifstream(path).is_open(), row.written) << row.file;
  }
  app.output().openAsioControlPanel(0);
  EXPECT_EQ(told(), Messages{});
  asio.plan.fails = {"controlPanel"};
  app.output().openAsioControlPanel(0);
  EXPECT_EQ(told(), Messages{"Unable to open the control panel"});
}

}  // namespace
}  // namespace plumetta
