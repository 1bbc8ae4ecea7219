// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/failing_file_system.h"
#include "support/loose_document.h"
#include "support/temporary_folder.h"
#include "support/wav_bytes.h"

namespace plumetta {
namespace {

// A document with everything around it, holding the counting wave.
class Commands : public ::testing::Test {
 protected:
  Commands() { reset(2, 100); }

  void reset(int channels, int32_t frames) {
    doc_ = std::make_unique<CPlumettaDoc>(services_);
    doc_->createNew(44100, channels, 32, 0, kFormatFloat);
    if (frames > 0) doc_->wave().insertBuffer(*countingWave(channels, frames), 0);
    history_ = {};
    prompter_.messages.clear();
  }
  bool run(const char* id, const Arguments& arguments = {}) { return runCommandOf(*doc_, id, arguments); }
  static ParameterValue at(double frame) { return FrameOrTime{frame, false}; }
  static ParameterValue number(int64_t n) { return n; }
  std::vector<int> frames() const { return framesIn(doc_->wave(), doc_->wave().channels() - 1); }

  TemporaryFolder folder_;
  RecordingPrompter prompter_;
  AudioLock lock_;
  HistoryList history_;
  EditSettings settings_;
  std::shared_ptr<const CWave> clipboard_;
  FailingFileSystem files_{-1};
  UndoFolder undoFolder_{files_, folder_.path()};
  DocumentServices services_{files_, undoFolder_, lock_, prompter_, history_, settings_, clipboard_};
  std::unique_ptr<CPlumettaDoc> doc_;
};

TEST_F(Commands, TrimmingStartsTheViewAnewUntilItIsUndone) {
  doc_->select(20, 10);
  doc_->setScrollAndZoom(5, 2);
  ASSERT_TRUE(run("trim"));
  EXPECT_EQ(doc_->view().framesPerPixel, 0);
  run("undo");
  EXPECT_EQ(doc_->view().framesPerPixel, 2);
}

TEST_F(Commands, MarkersOnGridLinesAndWhereSoundsBegin) {
  doc_->select(20, 59);
  ASSERT_TRUE(run("marker-grid", {number(4)}));
  EXPECT_EQ(markerPositions(doc_->wave()), (std::vector<int>{20, 30, 40, 50}));
  ASSERT_TRUE(run("marker-grid", {number(2)}));  // no marker twice at one place
  EXPECT_EQ(doc_->wave().markers.count(), 4);
  EXPECT_FALSE(run("marker-grid", {number(0)}));

  doc_->createNew(8000, 2, 16, 16000, kFormatPcm);
  for (const int start : {3000, 9013}) {
    for (int i = 0; i < 4000; ++i) {
      doc_->wave().setSample(start + i, 1, 0.5f * std::sin(0.4f * static_cast<float>(i + 1)));
    }
  }
  ASSERT_TRUE(run("auto-slice"));
  ASSERT_EQ(doc_->wave().markers.count(), 2);
  EXPECT_NEAR(doc_->wave().markers[0].position, 3000, 2);
  EXPECT_NEAR(doc_->wave().markers[1].position, 9013, 2);
  EXPECT_EQ(history_.names().back(), "Auto slice region");
}

TEST_F(Commands, EnvelopePointsAreToldOfInTheStatus) {
  for (const double value : {1.5, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(run("envelope-point", {at(5), value, number(0), number(0)}));
  }
  EXPECT_FALSE(doc_->wave().envelope.active());
  ASSERT_TRUE(run("envelope-point", {at(30), 0.25, number(1), number(2)}));
  EXPECT_EQ(prompter_.lastStatus, "Volume point added : ch=1 at 30 (0.25)");
  ASSERT_TRUE(run("envelope-move", {number(1), number(1), at(31), 0.5}));
  EXPECT_EQ(prompter_.lastStatus, "Volume point changed");
  ASSERT_TRUE(run("envelope-remove", {number(1), number(1)}));
  EXPECT_EQ(prompter_.lastStatus, "Volume point suppressed : ch=1 num=1");
  EXPECT_FALSE(run("envelope-create")) << "there is one";
  EXPECT_TRUE(run("envelope-clear"));
  EXPECT_TRUE(run("envelope-create"));
  EXPECT_EQ(history_.names().back(), "Volume created");
}

TEST_F(Commands, PeaksFollowTheSamples) {
  const auto highest = [&] {
    std::vector<PeakColumn> column(1);
    doc_->peaks().columns(doc_->wave(), 1, 0, doc_->wave().frames(), column);
    return column[0].max;
  };
  reset(2, 1000);
  const float last = doc_->wave().sample(999, 1);
  EXPECT_EQ(highest(), last);
  doc_->wave().setSample(5, 1, last + 1);
  EXPECT_EQ(highest(), last) << "nobody has said so";
  doc_->samplesChanged();
  EXPECT_EQ(highest(), last + 1);
  doc_->select(5, 5);
  ASSERT_TRUE(run("delete"));
  EXPECT_EQ(highest(), last);
  ASSERT_TRUE(run("undo"));
  EXPECT_EQ(highest(), last + 1);
}

TEST_F(Commands, MoreSilenceThanThereIsRoomForKeepsWhatCouldBeRedone) {
  doc_->select(1, 2);
  run("cut");
  run("undo");
  EXPECT_FALSE(run("insert-silence", {at(0), at(4e9)}));
  EXPECT_TRUE(doc_->journal().canRedo());
  EXPECT_EQ(prompter_.busyDepth, 0);
}

TEST_F(Commands, RegionsNeedMarkersToBeScrambled) {
  EXPECT_FALSE(run("scramble", {number(3)}));
  EXPECT_EQ(prompter_.messages.back(), "Create marker/region first");
  for (int p : {0, 50}) run("marker", {at(p)});
  ASSERT_TRUE(run("swap-regions", {at(50), at(0)}));
  EXPECT_EQ(frames(), span(50, 99) + span(0, 49));
  ASSERT_TRUE(run("scramble", {number(20)}));
  run("undo");
  run("undo");
  EXPECT_EQ(frames(), span(0, 99));
}

TEST_F(Commands, LostSamplesRefuseTheUndoAloud) {
  settings_.undoInRam = false;
  writeBytes(folder_.file("~plumetta_undo_" + std::to_string(processId())),
             "a file where the folder should be");
  doc_->select(1, 2);
  run("cut");
  EXPECT_FALSE(run("undo"));
  EXPECT_EQ(prompter_.messages.size(), 1u);
  EXPECT_EQ(doc_->wave().frames(), 98);
}

TEST_F(Commands, DocumentsLoadSaveAndSayWhyNot) {
  const std::string path = folder_.file("a.wav");
  writeBytes(path, plainWav(std::string(200, 'a')));
  ASSERT_EQ(doc_->load(path), FileOutcome::done);
  EXPECT_EQ(doc_->title(), "a.wav");
  doc_->select(10, 19);
  run("cut");
  const std::string saved = folder_.file("b.wav");
  ASSERT_EQ(doc_->save(saved), FileOutcome::done);
  EXPECT_EQ(doc_->title(), "b.wav");
  EXPECT_EQ(doc_->wave().fileName(), saved);
  EXPECT_FALSE(doc_->modified());
  EXPECT_EQ(bytesOf(saved).substr(44),
            std::string(180, 'a') + chunk("ETTA", "1.5.0.1" + std::string(25, '\0')));
  run("undo");
  EXPECT_EQ(doc_->save(folder_.file("c.unknown")), FileOutcome::fileError);
  EXPECT_EQ(doc_->save(folder_.file("no/c.wav")), FileOutcome::fileError);
  EXPECT_TRUE(doc_->modified());
  EXPECT_EQ(doc_->title(), "b.wav");
  prompter_.cancelAfter = 0;
  EXPECT_EQ(doc_->save(saved), FileOutcome::cancelled);
  CPlumettaDoc other(services_);
  EXPECT_EQ(other.load(path), FileOutcome::cancelled);
  EXPECT_EQ(other.load(folder_.path()), FileOutcome::fileError);
  EXPECT_EQ(other.load(folder_.file("none.wav")), FileOutcome::fileError);
  writeBytes(path, plainWav(std::string(200, 'a')).substr(0, 100));
  prompter_.cancelAfter = -1;
  prompter_.messages.clear();
  EXPECT_EQ(other.load(path), FileOutcome::done);
  EXPECT_EQ(prompter_.messages.size(), 1u);
  EXPECT_EQ(doc_->exportText(folder_.file("t.txt")), FileOutcome::done);
  const float value = doc_->wave().sample(0, 0);
  EXPECT_EQ(bytesOf(folder_.file("t.txt")).substr(0, 8), std::to_string(value));
}

TEST(CommandTable, RowsAreWhole) {
  std::vector<std::string> keys;
  for (const Command& command : commandTable()) {
    EXPECT_EQ(findCommand(command.id), &command) << "two rows of one name: " << command.id;
    EXPECT_NE(command.run, nullptr);
    if (command.key[0] == '\0') continue;
    EXPECT_EQ(std::count(keys.begin(), keys.end(), command.key), 0)
        << "a key of two commands: " << command.key;
    keys.push_back(command.key);
  }
}

}  // namespace
}  // namespace plumetta
