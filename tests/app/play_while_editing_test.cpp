// SPDX-License-Identifier: GPL-3.0-or-later
// The engine with the application's documents: what playing moves in them, and playing while they change.
#include <gtest/gtest.h>

#include <thread>

#include "app/application.h"
#include "support/forbid_allocation.h"
#include "support/random_editor.h"
#include "support/recording_prompter.h"
#include "support/temporary_folder.h"
#include "support/waves.h"

namespace plumetta {
namespace {

class Playing : public testing::Test {
 protected:
  Playing() {
    for (size_t c = 0; c < buffers.size(); ++c) buffers[c] = room.data() + c * kFrames;
    app.playbackEngine().setBuffers(buffers);
    app.startOutput = [] { return true; };
  }

  CPlumettaDoc& open(int channels, int32_t frames) {
    CPlumettaDoc& doc = *app.newDocument(44100, channels, 32, 0, kFormatFloat);
    doc.wave().insertBuffer(*countingWave(channels, frames), 0);
    return doc;
  }
  void pull() {
    std::array<float*, kMaxOutputChannels> channels{};
    int frames = kFrames;
    int channelCount = 2;
    const ForbidAllocation forbid;
    PlaybackEngine::callback(&app.playbackEngine(), channels.data(), &frames, &channelCount);
    for (int i = 0; i < frames; ++i) loudest = std::max(loudest, std::abs(channels[1][i]));
  }

  static constexpr int kFrames = 256;
  TemporaryFolder folder;
  RecordingPrompter prompter;
  Application app{prompter, nativeFileSystem(), folder.file("home")};
  PlaybackControls& controls = app.transport().controls();
  std::vector<float> room = std::vector<float>(size_t{kMaxOutputChannels} * kFrames);
  std::array<float*, kMaxOutputChannels> buffers{};
  float loudest = 0;
};

TEST_F(Playing, WindingCarriesCursorAndSelectionOfTheDocumentAlong) {
  CPlumettaDoc& doc = open(1, 100000);
  doc.setCursor(5000);
  app.transport().toggleForward(&doc);
  pull();
  EXPECT_EQ(doc.view().cursor, 5000) << "the document looks when it is asked to";
  doc.followPlayback();
  EXPECT_EQ(doc.view().cursor, 5000 + 5 * kFrames);
  pull();
  doc.select(10, 20);  // by hand, meanwhile
  doc.followPlayback();
  EXPECT_EQ(doc.view().cursor, 5000 + 10 * kFrames);
  EXPECT_EQ(doc.view().selectionEnd, 20);
  app.transport().stop();
  EXPECT_EQ(doc.playback().playCursor, 5000 + 10 * kFrames);
}

// Has a state of its own, as plug-ins do.
class Rack : public BlockProcessor {
 public:
  void setSampleRate(int) override {}
  void setPosition(double) noexcept override {}
  void setPlaying(bool) noexcept override {}
  void process(float** channels, int, int) noexcept override { state_ = channels[0][0]; }

 private:
  float state_ = 0;
};

// For the thread sanitizer above all: one thread pulls, the other edits, drives, closes and opens.
TEST_F(Playing, GoesOnWhileADocumentIsEdited) {
  std::atomic<bool> ended{false};
  std::atomic<int> blocks{0};
  std::thread device([&] {
    for (; !ended; ++blocks) pull();
  });
  controls.rackEnabled = true;
  for (unsigned round = 0; round < 8; ++round) {
    CPlumettaDoc& doc = open(1 + static_cast<int>(round % 3), 20000);
    Rack rack;
    app.playbackEngine().setRack(&rack);
    RandomEditor editor(app, doc, round);
    for (int step = 0; step < 150; ++step) editor.act();
    app.playbackEngine().setRack(nullptr);
    app.closeDocument(doc);
  }
  while (blocks == 0) std::this_thread::yield();
  ended = true;
  device.join();
}

}  // namespace
}  // namespace plumetta
