// SPDX-License-Identifier: GPL-3.0-or-later
// What goes to the system clipboard, and what comes from there.
#include <gtest/gtest.h>

#include "app/application.h"
#include "doc/command.h"
#include "support/recording_prompter.h"
#include "support/temporary_folder.h"
#include "support/wav_bytes.h"
#include "support/waves.h"

namespace plumetta {
namespace {

using namespace std::string_literals;

struct FakeClipboard : SystemClipboard {
  void offer(std::shared_ptr<const CWave> given, int32_t count) override {
    audio = std::move(given);
    frames = count;
  }
  std::optional<std::string> waveImage() override { return image; }

  std::shared_ptr<const CWave> audio;
  int32_t frames = -1;
  std::optional<std::string> image;
};

class Clipboard : public testing::Test {
 protected:
  Clipboard() { app.setSystemClipboard(&clipboard); }

  TemporaryFolder folder;
  RecordingPrompter prompter;
  Application app{prompter, nativeFileSystem(), folder.file("home")};
  FakeClipboard clipboard;
};

TEST_F(Clipboard, GetsEveryChannelAndAllFramesButTheUpperBound) {
  CPlumettaDoc& doc = *app.newDocument(44100, 2, 32, 0, kFormatFloat);
  doc.wave().insertBuffer(*countingWave(2, 300), 0);
  const struct {
    const char* command;
    int from, to;
    bool allActive;
    int32_t bufferFrames, systemFrames;
  } cases[] = {{"copy", 200, 100, true, 101, 100},
               {"copy", 100, 200, false, 101, 100},
               {"copy", 5, 5, true, 1, 0},
               {"cut", 10, 12, false, 3, 2}};
  for (const auto& [command, from, to, allActive, bufferFrames, systemFrames] : cases) {
    doc.wave().setActive(allActive ? ActiveOperation::all : ActiveOperation::off, 0);
    doc.setSelectionExactly(from, to);
    ASSERT_EQ(runCommand(doc, *findCommand(command)), CommandOutcome::done);
    EXPECT_EQ(app.clipboard()->frames(), bufferFrames);
    EXPECT_EQ(app.clipboard()->channels(), allActive ? 2 : 1);
    EXPECT_EQ(clipboard.frames, systemFrames);
    ASSERT_EQ(clipboard.audio->channels(), 2);
    EXPECT_EQ(framesIn(*clipboard.audio, 1), span(std::min(from, to), std::max(from, to)));
  }
}

// A selection that a paste has left ends behind the last frame; that frame is exported then.
TEST_F(Clipboard, NeverGetsMoreThanThereIs) {
  CPlumettaDoc& doc = *app.newDocument(44100, 1, 16, 20, kFormatPcm);
  doc.setSelectionExactly(10, 20);
  ASSERT_EQ(runCommand(doc, *findCommand("copy")), CommandOutcome::done);
  EXPECT_EQ(clipboard.frames, 10);
  EXPECT_EQ(clipboard.audio->frames(), 10);
}

TEST_F(Clipboard, IsPastedAsAFileOfItsOwn) {
  EXPECT_EQ(app.pasteFromSystemClipboard(), nullptr);
  EXPECT_EQ(prompter.messages, std::vector<std::string>{"The system clipboard holds no audio."});
  clipboard.image = "RIFF nonsense";
  EXPECT_EQ(app.pasteFromSystemClipboard(), nullptr);
  EXPECT_EQ(prompter.messages.size(), 2u);
  EXPECT_TRUE(app.documents().empty());

  clipboard.image = plainWav("\x00\x40\x00\xC0"s);
  const CPlumettaDoc* doc = app.pasteFromSystemClipboard();
  ASSERT_NE(doc, nullptr);
  EXPECT_EQ(doc->title(), "paste from clipboard.wav");
  EXPECT_EQ(doc->wave().fileName(), "paste.wav");
  EXPECT_EQ(doc->wave().frames(), 2);
  EXPECT_EQ(doc->wave().sampleRate(), 8000u);
  EXPECT_TRUE(doc->modified());
  EXPECT_EQ(prompter.messages.size(), 2u);
}

}  // namespace
}  // namespace plumetta
