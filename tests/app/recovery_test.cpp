// SPDX-License-Identifier: GPL-3.0-or-later
// Copies of changed documents, and what is known of plug-ins that have taken the program down.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>

#include "app/crash_recovery.h"
#include "app/plugin_library.h"
#include "doc/command.h"
#include "support/failing_file_system.h"
#include "support/recording_prompter.h"
#include "support/temporary_folder.h"
#include "support/test_plugins.h"
#include "support/waves.h"

namespace plumetta {
namespace {

class FullDisk : public FailingFileSystem {
 public:
  FullDisk() : FailingFileSystem(-1) {}
  std::unique_ptr<File> createNew(const std::string& path, std::error_code& error) override {
    error = std::make_error_code(std::errc::no_space_on_device);
    return isFull ? nullptr : FailingFileSystem::createNew(path, error);
  }
  bool isFull = false;
};

class Recovery : public testing::Test {
 protected:
  Recovery() { start(); }

  // Ends the program, if it runs, without closing anything, and starts it anew.
  void start() {
    app.reset();
    app = std::make_unique<Application>(prompter, disk, home);
  }
  CPlumettaDoc& changedDocument() {
    CPlumettaDoc& doc = *app->newDocument(48000, 2, 24, 0, kFormatPcm);
    doc.wave().insertBuffer(*countingWave(2, 500), 0);  // which brings its format along
    doc.wave().setBitsPerSample(24);
    doc.wave().setFormatTag(kFormatPcm);
    doc.wave().setFileName(folder.file("song.wav"));
    doc.setTitle("song.wav");
    doc.select(10, 20);
    EXPECT_EQ(runCommand(doc, *findCommand("marker-selection")), CommandOutcome::done);
    EXPECT_TRUE(doc.modified());
    return doc;
  }
  size_t copies() {
    size_t count = 0;
    for (const std::string& name : disk.list(home)) count += name.starts_with("~plumetta_changed_") ? 1 : 0;
    return count;
  }

  TemporaryFolder folder;
  RecordingPrompter prompter;
  FullDisk disk;
  std::string home = folder.file("home");
  std::unique_ptr<Application> app;
};

TEST_F(Recovery, BringsBackWhatWasChanged) {
  changedDocument();
  app->secureDocuments();
  EXPECT_TRUE(app->recoveryFiles().leftCopies().empty()) << "a living program's copy is nobody else's";
  start();
  const auto documents = offerRecovery(*app);
  ASSERT_EQ(documents.size(), 1u);
  ASSERT_EQ(prompter.questions.size(), 1u);
  EXPECT_NE(prompter.questions[0].find("\nsong.wav\n"), std::string::npos);
  CPlumettaDoc& doc = *documents[0];
  EXPECT_TRUE(doc.modified());
  EXPECT_EQ(doc.title(), "song.wav");
  EXPECT_EQ(doc.wave().fileName(), folder.file("song.wav"));
  EXPECT_EQ(doc.wave().bitsPerSample(), 24);
  EXPECT_EQ(doc.wave().formatTag(), kFormatPcm);
  EXPECT_EQ(doc.wave().markers.count(), 2);
  const auto expected = countingWave(2, 500);
  ASSERT_EQ(doc.wave().sampleCount(), expected->sampleCount());
  EXPECT_TRUE(
      std::equal(expected->samples(), expected->samples() + expected->sampleCount(), doc.wave().samples()));
  start();
  EXPECT_EQ(offerRecovery(*app).size(), 1u) << "it is not safe before it was saved";
}

TEST_F(Recovery, BringsBackTheLongestSamples) {
  CWave& wave = changedDocument().wave();
  wave.setBitsPerSample(64);
  wave.setFormatTag(kFormatFloat);
  app->secureDocuments();
  start();
  const auto documents = offerRecovery(*app);
  ASSERT_EQ(documents.size(), 1u);
  EXPECT_EQ(documents[0]->wave().bitsPerSample(), 64);
}

TEST_F(Recovery, LeavesNothingOfDocumentsInOrder) {
  CPlumettaDoc& doc = changedDocument();
  app->secureDocuments();
  EXPECT_GT(copies(), 0u);
  EXPECT_EQ(doc.save(folder.file("song.wav")), FileOutcome::done);
  app->keepCopies();
  EXPECT_EQ(copies(), 0u) << "saved";
  doc.setModified(true);
  app->secureDocuments();
  EXPECT_GT(copies(), 0u);
  app->closeDocument(doc);
  EXPECT_EQ(copies(), 0u) << "closed";
}

TEST_F(Recovery, LeavesAloneWhatIsNotWanted) {
  changedDocument();
  app->secureDocuments();
  start();
  prompter.answer = false;
  EXPECT_TRUE(offerRecovery(*app).empty());
  start();
  EXPECT_TRUE(offerRecovery(*app).empty());
  EXPECT_EQ(prompter.questions.size(), 1u) << "asked once";
  EXPECT_GT(copies(), 0u);
}

TEST_F(Recovery, TellsOfAFullDiskAndGoesOn) {
  CPlumettaDoc& doc = changedDocument();
  disk.isFull = true;
  app->secureDocuments();
  EXPECT_NE(prompter.lastStatus.find("song.wav"), std::string::npos);
  prompter.lastStatus.clear();
  app->secureDocuments();
  EXPECT_EQ(prompter.lastStatus, "") << "once for a state";
  disk.isFull = false;
  EXPECT_EQ(runCommand(doc, *findCommand("marker-selection")), CommandOutcome::done);
  app->secureDocuments();
  start();
  EXPECT_EQ(offerRecovery(*app).size(), 1u);
}

TEST_F(Recovery, AsksBeforeAPlugInIsLoadedThatHasCrashed) {
  const std::string plugin = folder.file("bad.so");
  std::ofstream(plugin) << "x";
  std::ofstream(home + "/plumetta.crash", std::ios::binary) << plugin << "\n" << plugin << "\n";
  EXPECT_TRUE(offerRecovery(*app).empty());
  ASSERT_EQ(prompter.messages.size(), 1u);
  EXPECT_NE(prompter.messages[0].find(plugin), std::string::npos);
  prompter.answer = false;
  EXPECT_FALSE(agreesToCrashed(*app, plugin));
  EXPECT_TRUE(agreesToCrashed(*app, folder.file("good.so")));
  EXPECT_EQ(prompter.questions.size(), 1u);
  start();
  offerRecovery(*app);
  EXPECT_EQ(prompter.messages.size(), 1u) << "told once";
}

TEST_F(Recovery, BringsBackTheChainWithoutWhatHasCrashed) {
  Rack& rack = app->rack();
  rack.addAt(2, testPlugin("bank"));
  rack.addAt(4, testPlugin("gain"));
  rack.setParameter(2, 1, 0.75f);
  rack.setMuted(2, true);
  app->keepCopies();
  EXPECT_FALSE(app->chainCopy().left()) << "a living program's chain is nobody else's";
  start();
  std::ofstream(home + "/plumetta.crash", std::ios::binary) << testPlugin("gain") << "\n";
  EXPECT_TRUE(offerRecovery(*app).empty());
  ASSERT_EQ(prompter.questions.size(), 1u);
  EXPECT_TRUE(prompter.messages.empty()) << "the question names the plug-in";
  EXPECT_NE(prompter.questions[0].find("crashed:\n" + testPlugin("gain")), std::string::npos);
  EXPECT_TRUE(app->rack().isMuted(2));
  EXPECT_EQ(app->rack().pluginAt(2)->parameter(1), 0.75f);
  EXPECT_FALSE(app->rack().occupied(4));
  start();
  EXPECT_FALSE(app->rack().occupied(2));
  prompter.answer = false;
  offerRecovery(*app);
  EXPECT_EQ(prompter.questions.size(), 2u) << "it is offered until the program ends in good order";
  EXPECT_FALSE(app->rack().occupied(2));
  start();
  offerRecovery(*app);
  EXPECT_EQ(prompter.questions.size(), 2u) << "asked once";
  EXPECT_TRUE(loadChainFile(*app, app->chainCopy().keptPath(), UnknownLibraries::tell));
  EXPECT_TRUE(app->rack().occupied(2)) << "what was not wanted can still be had";
  app->secureDocuments();
  app->chainCopy().forget();
  start();
  EXPECT_FALSE(app->chainCopy().left());
}

TEST_F(Recovery, LeavesWhatHasCrashedOutOfChainFiles) {
  app->rack().addAt(0, testPlugin("bank"));
  app->rack().addAt(1, testPlugin("gain"));
  const std::string chain = folder.file("both.sor");
  ASSERT_FALSE(saveChain(disk, app->rack(), chain));
  std::ofstream(home + "/plumetta.crash", std::ios::binary) << testPlugin("gain") << "\n";
  prompter.answer = false;
  EXPECT_TRUE(loadChainFile(*app, chain, UnknownLibraries::tell));
  EXPECT_TRUE(app->rack().occupied(0));
  EXPECT_FALSE(app->rack().occupied(1));
  EXPECT_EQ(prompter.questions.size(), 1u);
}

}  // namespace
}  // namespace plumetta
