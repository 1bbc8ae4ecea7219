// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/undo.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/failing_file_system.h"
#include "support/temporary_folder.h"
#include "support/waves.h"

namespace plumetta {
namespace {

class FixedDisplay : public DisplayState {
 public:
  ViewState viewState() const override { return view; }
  void setViewState(const ViewState& state) override { view = state; }
  void samplesChanged() override {}
  ViewState view;
};

// Every case runs with samples in memory (1) and in files (0).
class Undo : public ::testing::TestWithParam<int> {
 protected:
  Undo() : wave_(countingWave(2, 10)) {
    journal_.attach(*wave_, display_);
    journal_.setInRam(static_cast<uint8_t>(GetParam()));
  }
  size_t undoFiles() const {
    size_t count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path())) {
      count += entry.path().extension() == ".tmp" ? 1 : 0;
    }
    return count;
  }
  void cut(int32_t from, int32_t to) {
    auto step = journal_.makeStep(UndoKind::cut);
    step->setName(journal_.canUndo() ? "second" : "first");
    journal_.push(std::move(step));
    wave_->deleteRange(from, to);
  }

  TemporaryFolder folder_;
  std::unique_ptr<CWave> wave_;
  FixedDisplay display_;
  UndoFolder undoFolder_{nativeFileSystem(), folder_.path()};
  AudioLock lock_;
  CDoUndo journal_{nativeFileSystem(), undoFolder_, lock_};
};

TEST_P(Undo, FilesGoWithTheirSteps) {
  EXPECT_EQ(journal_.undo(), UndoResult::nothing);
  cut(0, 3);
  cut(1, 1);
  EXPECT_EQ(undoFiles(), GetParam() == 1 ? 0u : 2u);
  EXPECT_EQ(journal_.undo(), UndoResult::done);
  EXPECT_EQ(journal_.stepNames(), (std::vector<std::string>{"first", "second"}));
  EXPECT_EQ(framesIn(*wave_, 1), span(4, 9));
  cut(0, 0);  // a new edit discards what could be redone
  EXPECT_EQ(journal_.redo(), UndoResult::nothing);
  EXPECT_EQ(undoFiles(), GetParam() == 1 ? 0u : 2u);
  journal_.destroy();
  EXPECT_EQ(undoFiles(), 0u);
}

TEST_P(Undo, AnnotationStepsLeaveSamplesAndBringFormatBack) {
  wave_->markers.add(3, "kept");
  journal_.push(UndoKind::annotations);
  wave_->markers.clear();
  wave_->setBitsPerSample(8);
  wave_->setSample(0, 0, 42.0f);
  EXPECT_EQ(undoFiles(), 0u);
  journal_.undo();
  EXPECT_EQ(wave_->markers[0].label, "kept");
  EXPECT_EQ(wave_->bitsPerSample(), 32);
  EXPECT_EQ(wave_->sample(0, 0), 42.0f);
  journal_.redo();
  EXPECT_TRUE(wave_->markers.empty());
}

TEST_P(Undo, FullJournalDropsItsOldestStep) {
  for (int i = 0; i <= static_cast<int>(CDoUndo::kSlots); ++i) {
    journal_.push(UndoKind::annotations);
    wave_->setSampleRate(static_cast<uint32_t>(i));
  }
  EXPECT_EQ(journal_.undoCount(), CDoUndo::kSlots);
  while (journal_.undo() == UndoResult::done) {
  }
  EXPECT_EQ(wave_->sampleRate(), 0u);  // the state after the dropped step
}

INSTANTIATE_TEST_SUITE_P(InMemoryAndInFiles, Undo, ::testing::Values(1, 0));

TEST(UndoFiles, WhatCouldNotBeKeptIsNeverRestoredAsSilence) {
  const TemporaryFolder folder;
  auto wave = countingWave(2, 10);
  FixedDisplay display;
  // Fails the folder, the file's making, its writing, its closing; then the reading.
  for (int failAt = 0; failAt < 6; ++failAt) {
    FailingFileSystem files(failAt);
    UndoFolder undoFolder(files, folder.path());
    AudioLock lock;
    CDoUndo journal(files, undoFolder, lock);
    journal.attach(*wave, display);
    journal.setInRam(0);
    journal.push(UndoKind::cut);
    wave->setSample(3, 0, 99.0f);
    const auto result = journal.undo();
    ASSERT_EQ(wave->sample(3, 0), result == UndoResult::done ? 3.0f : 99.0f) << failAt;
    if (result == UndoResult::done) {
      EXPECT_EQ(journal.redo(), UndoResult::done);
    } else {
      EXPECT_EQ(result, UndoResult::samplesMissing);
      EXPECT_TRUE(journal.canUndo());
    }
    wave = countingWave(2, 10);
  }
  EXPECT_EQ(folder.entries(), 0u);
}

TEST(UndoFiles, LeftoversOfTheDeadGoAndThoseOfTheLivingStay) {
  const TemporaryFolder folder;
  UndoFolder living(nativeFileSystem(), folder.path());
  const std::string livingPath = living.path();
  ASSERT_FALSE(livingPath.empty());
  writeBytes(livingPath + "/~plumetta_0_0000.tmp", "x");
  const std::string deadPath = folder.file("~plumetta_undo_1");
  std::filesystem::create_directories(deadPath);
  writeBytes(deadPath + "/lock", "");
  writeBytes(deadPath + "/~plumetta_0_0000.tmp", "x");
  UndoFolder(nativeFileSystem(), folder.path()).removeLeftovers();
  EXPECT_FALSE(std::filesystem::exists(deadPath));
  EXPECT_TRUE(std::filesystem::exists(livingPath + "/~plumetta_0_0000.tmp"));
}

}  // namespace
}  // namespace plumetta
