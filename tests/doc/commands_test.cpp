// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "doc/command.h"
#include "support/failing_file_system.h"
#include "support/recording_prompter.h"
#include "support/temporary_folder.h"
#include "support/wav_bytes.h"
#include "support/waves.h"

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
  bool run(const char* id, Arguments arguments = {}) {
    const Command* command = findCommand(id);
    EXPECT_NE(command, nullptr) << id;
    for (size_t i = arguments.size(); i < command->parameters.size(); ++i) {
      arguments.push_back(command->parameters[i].fallback);
    }
    return runCommand(*doc_, *command, std::move(arguments)) == CommandOutcome::done;
  }
  static ParameterValue at(double frame) { return FrameOrTime{frame, false}; }
  static ParameterValue number(int64_t n) { return n; }
  void expectView(int32_t start, int32_t end, int32_t cursor) {
    EXPECT_EQ(doc_->view().selectionStart, start);
    EXPECT_EQ(doc_->view().selectionEnd, end);
    EXPECT_EQ(doc_->view().cursor, cursor);
  }
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

TEST_F(Commands, CutAndDeleteLeaveThePointBeforeTheRange) {
  doc_->select(60, 50);
  ASSERT_TRUE(run("cut"));
  EXPECT_EQ(frames(), span(0, 49) + span(61, 99));
  expectView(49, 49, 49);
  EXPECT_EQ(framesIn(*clipboard_), span(50, 60));
  doc_->select(0, 9);
  ASSERT_TRUE(run("delete"));
  expectView(0, 0, 0);
  ASSERT_TRUE(run("delete"));  // nothing selected: the frame at the point
  EXPECT_EQ(frames().front(), 11);
  EXPECT_EQ(history_.names(), (std::vector<std::string>{"Cut", "Suppr", "Suppr"}));
  EXPECT_TRUE(doc_->modified());
  while (run("undo")) {
  }
  EXPECT_EQ(frames(), span(0, 99));
  expectView(60, 50, 0);
}

TEST_F(Commands, CopyTakesTheActiveChannelsAndChangesNothing) {
  doc_->wave().setActive(ActiveOperation::solo, 1);
  doc_->select(10, 12);
  ASSERT_TRUE(run("copy"));
  EXPECT_EQ(clipboard_->channels(), 1);
  EXPECT_FLOAT_EQ(clipboard_->sample(2, 0), 12.01f);
  EXPECT_FALSE(doc_->modified());
  EXPECT_FALSE(doc_->journal().canUndo());
  doc_->wave().setActive(ActiveOperation::off, 1);
  EXPECT_FALSE(run("cut"));
  EXPECT_EQ(history_.names().size(), 1u);
  EXPECT_TRUE(prompter_.messages.empty());
}

TEST_F(Commands, PasteInsertsAtTheCursorOrReplacesTheSelection) {
  EXPECT_FALSE(run("paste"));
  clipboard_ = countingWave(2, 5);
  doc_->setCursor(20);
  ASSERT_TRUE(run("paste"));
  EXPECT_EQ(frames(), span(0, 19) + span(0, 4) + span(20, 99));
  expectView(20, 25, 25);
  run("undo");
  doc_->select(10, 29);
  ASSERT_TRUE(run("paste"));
  EXPECT_EQ(frames(), span(0, 9) + span(0, 4) + span(30, 99));
  expectView(10, 15, 10);
  run("undo");
  settings_.pasteReplace = false;
  ASSERT_TRUE(run("paste"));
  EXPECT_EQ(doc_->wave().frames(), 105);

  run("undo");
  settings_.pasteReplace = true;
  doc_->select(90, 99);  // at the end the insertion point is clamped to the last frame that is left
  ASSERT_TRUE(run("paste"));
  EXPECT_EQ(frames(), span(0, 88) + span(0, 4) + std::vector<int>{89});
}

TEST_F(Commands, PasteOfAnotherLayoutIsRefusedUnlessMono) {
  clipboard_ = countingWave(3, 5);
  for (const bool replace : {false, true}) {
    settings_.pasteReplace = replace;
    doc_->select(3, 4);
    EXPECT_FALSE(run("paste"));
    EXPECT_EQ(prompter_.messages.back(), "Clipboard channel number:3\nUnable to paste data");
    EXPECT_EQ(frames(), span(0, 99));
    EXPECT_FALSE(doc_->journal().canUndo());
  }
  clipboard_ = countingWave(1, 5);
  EXPECT_TRUE(run("paste"));
  EXPECT_EQ(history_.names(), std::vector<std::string>{"Paste"});
}

TEST_F(Commands, OneSampleIsDrawnAndTakenBack) {
  ASSERT_TRUE(run("sample", {at(7), number(1), -0.5}));
  EXPECT_EQ(doc_->wave().sample(7, 1), -0.5f);
  EXPECT_EQ(doc_->wave().sample(7, 0), 7.0f);
  EXPECT_EQ(history_.names(), std::vector<std::string>{"Sample moved"});
  const Arguments refused[] = {{at(100), number(0), 0.0}, {at(0), number(2), 0.0}, {at(0), number(0), 1.5}};
  for (const Arguments& arguments : refused) EXPECT_FALSE(run("sample", arguments));
  ASSERT_TRUE(run("undo"));
  EXPECT_EQ(doc_->wave().sample(7, 1), 7.01f);
}

TEST_F(Commands, TrimNeedsASelectionAndResetsTheView) {
  EXPECT_FALSE(run("trim"));
  EXPECT_EQ(prompter_.messages, std::vector<std::string>{"Create selection first"});
  doc_->select(20, 10);
  doc_->setScrollAndZoom(5, 2);
  ASSERT_TRUE(run("trim"));
  EXPECT_EQ(frames(), span(10, 20));
  expectView(0, 0, 0);
  EXPECT_EQ(doc_->view().framesPerPixel, 0);
  run("undo");
  EXPECT_EQ(doc_->view().framesPerPixel, 2);
}

TEST_F(Commands, DeleteTakesASelectedMarkerInsteadOfAudio) {
  run("marker", {at(7), std::string("seven")});
  run("marker", {at(500)});  // beyond the end: brought back
  EXPECT_EQ(markerPositions(doc_->wave()), (std::vector<int>{7, 99}));
  EXPECT_EQ(doc_->wave().markers[0].label, "seven");
  const size_t steps = doc_->journal().undoCount();
  doc_->selectedMarker = 0;
  ASSERT_TRUE(run("delete"));
  EXPECT_EQ(markerPositions(doc_->wave()), std::vector<int>{99});
  EXPECT_EQ(doc_->wave().frames(), 100);
  EXPECT_EQ(doc_->journal().undoCount(), steps);
  EXPECT_EQ(history_.names().back(), "Marker point created");
  ASSERT_TRUE(run("delete"));
  EXPECT_EQ(doc_->wave().frames(), 99);
}

TEST_F(Commands, AClickedMarkerIsForgottenWhenItsNumberMayMeanAnother) {
  for (int p : {1, 50, 70}) run("marker", {at(p)});
  doc_->selectedMarker = 1;
  doc_->select(0, 5);
  run("cut");  // takes the first marker along
  ASSERT_TRUE(run("delete"));
  EXPECT_EQ(markerPositions(doc_->wave()), (std::vector<int>{43, 63}));
  doc_->selectedMarker = 1;
  run("undo");
  EXPECT_FALSE(doc_->selectedMarker);
}

TEST_F(Commands, AnnotationsAreEditedAndUndoneWithTheirIds) {
  for (int p : {10, 20, 30}) run("marker", {at(p)});
  run("marker-delete", {number(0)});
  run("marker-move", {number(1), at(40)});
  EXPECT_FALSE(run("marker-delete", {number(2)}));
  EXPECT_FALSE(run("marker-move", {number(0), at(-1)}));
  run("loop", {at(50), at(40)});
  run("loop-clear");
  run("marker-clear");
  EXPECT_EQ(history_.names(),
            (std::vector<std::string>{"Marker point created", "Marker point created", "Marker point created",
                                      "Marker deleted", "Marker moved", "Loop points created",
                                      "All loop points suppr", "All marker removed"}));
  run("undo");
  EXPECT_EQ(markerPositions(doc_->wave()), (std::vector<int>{20, 40}));
  EXPECT_EQ(doc_->wave().markers[1].id, 3u);
  run("undo");
  EXPECT_EQ(doc_->wave().loops.start(0), 40);
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

TEST_F(Commands, EnvelopeComesToLifeWithItsFirstPoint) {
  const auto point = [&](double frame, double value, int64_t channel, int64_t kind) {
    return run("envelope-point", {at(frame), value, channel, kind});
  };
  EXPECT_FALSE(run("envelope-invert", {number(0)}));
  EXPECT_FALSE(run("envelope-clear"));
  EXPECT_FALSE(point(0, 0.5, 0, 0));
  EXPECT_FALSE(point(99, 0.5, 0, 0));
  EXPECT_FALSE(point(5, 1.5, 0, 0));
  EXPECT_FALSE(point(5, std::numeric_limits<double>::quiet_NaN(), 0, 0));
  EXPECT_FALSE(point(5, 0.5, 2, 0));
  EXPECT_FALSE(point(5, 0.5, 0, 4));
  EXPECT_FALSE(doc_->wave().envelope.active());
  ASSERT_TRUE(point(30, 0.25, 1, 2));
  EXPECT_EQ(prompter_.lastStatus, "Volume point added : ch=1 at 30 (0.25)");
  EXPECT_FALSE(point(30, 0.5, 1, 0));
  EXPECT_EQ(doc_->wave().envelope.channelCount(), 2);
  EXPECT_FALSE(run("envelope-remove", {number(2), number(1)}));
  ASSERT_TRUE(run("envelope-remove", {number(1), number(1)}));
  EXPECT_EQ(prompter_.lastStatus, "Volume point suppressed : ch=1 num=1");
  prompter_.answer = false;
  EXPECT_FALSE(run("envelope-clear"));
  EXPECT_EQ(prompter_.questions.back(), "Do you want to delete all the volume envelope?");
  prompter_.answer = true;
  EXPECT_TRUE(run("envelope-clear"));
  EXPECT_TRUE(run("envelope-create"));
  EXPECT_FALSE(run("envelope-create"));
  EXPECT_TRUE(run("envelope-reset"));
  EXPECT_EQ(history_.names(),
            (std::vector<std::string>{"Volume add", "Volume point removed", "Volume delete all",
                                      "Volume created", "Volume reset"}));
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

TEST_F(Commands, AVolumePointIsChangedBetweenItsNeighbours) {
  ASSERT_TRUE(run("envelope-point", {at(30), 0.75, number(1), number(0)}));
  ASSERT_TRUE(run("envelope-point", {at(60), 0.25, number(1), number(0)}));
  const auto move = [&](int64_t index, double frame, double value) {
    return run("envelope-move", {number(index), number(1), at(frame), value});
  };
  const CVolumeEnvelope& envelope = doc_->wave().envelope;
  ASSERT_TRUE(move(1, 59, 1.0));
  EXPECT_EQ(envelope.point(1, 1).position, 59);
  EXPECT_EQ(envelope.point(1, 1).value, 1.0f);
  EXPECT_EQ(prompter_.lastStatus, "Volume point changed");
  EXPECT_EQ(history_.names().back(), "Volume point changed");
  ASSERT_TRUE(run("undo"));
  EXPECT_EQ(envelope.point(1, 1).position, 30);

  ASSERT_TRUE(move(0, 0, 0.1));
  ASSERT_TRUE(move(3, 99, 0.2));
  EXPECT_EQ(envelope.point(3, 1).value, 0.2f);
  // Ends that would leave their place, a neighbour's place, what isn't there, values out of range.
  const size_t steps = history_.names().size();
  EXPECT_FALSE(move(0, 1, 0.5) || move(3, 98, 0.5) || move(1, 0, 0.5) || move(1, 60, 0.5) ||
               move(2, 30, 0.5));
  EXPECT_FALSE(move(4, 99, 0.5) || move(1, 40, 1.01) || move(1, 40, -0.01));
  EXPECT_FALSE(run("envelope-move", {number(1), number(2), at(40), 0.5}));

  const std::vector<const char*> names{"Volume point linear", "Volume point smooth", "Volume point hold",
                                       "Volume point curve"};
  for (const int kind : {3, 2, 1, 0}) {
    ASSERT_TRUE(run("envelope-kind", {number(1), number(1), number(kind)}));
    EXPECT_EQ(static_cast<int>(envelope.point(1, 1).kind), kind);
    EXPECT_EQ(history_.names().back(), names[static_cast<size_t>(kind)]);
  }
  EXPECT_FALSE(run("envelope-kind", {number(1), number(1), number(4)}));
  EXPECT_FALSE(run("envelope-kind", {number(9), number(1), number(0)}));
  ASSERT_TRUE(run("envelope-point-reset", {number(1), number(1)}));
  EXPECT_EQ(envelope.point(1, 1).value, 0.5f);
  EXPECT_EQ(envelope.point(1, 1).position, 30);
  EXPECT_EQ(history_.names().size(), steps + names.size() + 1);
}

TEST_F(Commands, RefusalsKeepWhatCouldBeRedone) {
  doc_->select(1, 2);
  run("cut");
  run("undo");
  EXPECT_FALSE(run("insert-silence", {at(200), at(5)}));
  EXPECT_FALSE(run("insert-silence", {at(0), at(4e9)}));
  EXPECT_TRUE(doc_->journal().canRedo());
  ASSERT_TRUE(run("insert-silence", {at(100), FrameOrTime{0.001, true}}));
  EXPECT_EQ(doc_->wave().frames(), 144);
  expectView(100, 143, 100);
  EXPECT_FALSE(run("redo"));
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

TEST_F(Commands, EmptyDocumentsRefuseAndTakeWhatIsPasted) {
  reset(1, 0);
  for (const char* id : {"cut", "copy", "delete", "trim", "envelope-reset", "undo"})
    EXPECT_FALSE(run(id)) << id;
  EXPECT_FALSE(run("marker", {at(0)}));
  EXPECT_TRUE(history_.names().empty());
  clipboard_ = countingWave(2, 5);
  ASSERT_TRUE(run("paste"));
  EXPECT_EQ(doc_->wave().channels(), 2);
  EXPECT_EQ(doc_->view().cursor, 4);
  EXPECT_EQ(doc_->title(), "Untitled");
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
