// SPDX-License-Identifier: GPL-3.0-or-later
// A plug-in that hangs in the output's thread.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include "app/application.h"
#include "doc/command.h"
#include "support/fake_wave_out.h"
#include "support/hanging_plugin.h"
#include "support/recording_prompter.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

void tellOfItBeforeTheOutputIsLeftBehind() {
  TemporaryFolder folder;
  RecordingPrompter prompter;
  FakeWaveOut waveOut;
  Application app{prompter, nativeFileSystem(), folder.file("home"), waveOut};
  CPlumettaDoc& doc = *app.newDocument(44100, 2, 16, 44100, kFormatPcm);
  const Hanging hanging;
  ASSERT_EQ(app.rack().add(testPlugin("misbehaving")).position, 0);
  app.setRackOn(true);
  ASSERT_TRUE(app.transport().play(&doc));
  while (app.vstHost().beginProcessing(0) != nullptr) {  // until the thread is in it
    app.vstHost().endProcessing(0);
    waveOut.playAll();
  }
  EXPECT_EQ(runCommand(doc, *findCommand("rack-apply")), CommandOutcome::refused);
  app.watchSound();
  EXPECT_EQ(prompter.messages.size(), 1u) << "told once";
  EXPECT_FALSE(app.output().running());
  ASSERT_TRUE(app.transport().play(&doc));
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (doc.playback().position == 0 && std::chrono::steady_clock::now() < deadline) waveOut.playAll();
  EXPECT_GT(doc.playback().position, 0) << "with another thread";
}

// In a process of its own: the host stays behind as well, and there can be but one.
TEST(HungPluginDeathTest, OthersMayTellOfItBeforeTheOutputIsLeftBehind) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto run = [] {
    tellOfItBeforeTheOutputIsLeftBehind();
    std::_Exit(testing::Test::HasFailure() ? 1 : 0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace plumetta
