// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "batch/batch_functions.h"
#include "batch/batch_readers.h"
#include "batch/batch_run.h"
#include "formats/wav_writer.h"
#include "platform/paths.h"
#include "support/failing_file_system.h"
#include "support/temporary_folder.h"
#include "support/waves.h"

namespace plumetta {
namespace {

namespace fs = std::filesystem;

// An input folder with waves of different lengths, and an output folder.
class BatchTest : public testing::Test {
 protected:
  BatchTest() {
    fs::create_directories(settings.input);
    fs::create_directories(settings.output);
  }

  void addFiles(int count) {
    for (int i = 0; i < count; ++i) {
      const auto name = "f" + std::to_string(100 + i) + ".wav";
      ASSERT_TRUE(saveWav(nativeFileSystem(), joinPath(settings.input, name),
                          *countingWave(1 + i % 2, 50 + 997 * (i % 7)), SyncToDisk::no)
                      .saved);
    }
  }
  std::string run(FileSystem& files = nativeFileSystem()) {
    std::string log;
    BatchRun(files, settings, [&](std::string_view text) { log += text; }).run();
    return log;
  }
  std::string result(const std::string& name) const { return bytesOf(joinPath(settings.output, name)); }

  TemporaryFolder folder;
  BatchSettings settings{folder.file("in"), folder.file("out"), *batchFunctionIn("Invert")};
};

size_t occurrences(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST_F(BatchTest, AStopFinishesTheFilesInWorkAndNoOthers) {
  addFiles(60);
  for (settings.jobs = 1; settings.jobs <= 3; ++settings.jobs) {
    std::string log;
    std::unique_ptr<BatchRun> batch;
    bool asked = false;
    batch = std::make_unique<BatchRun>(nativeFileSystem(), settings, [&](std::string_view text) {
      log += text;
      if (!asked && occurrences(log, batch_text::kApplied) == 5) {
        asked = true;
        batch->requestStop();
      }
    });
    batch->run();
    const size_t done = occurrences(log, batch_text::kApplied);
    // Other jobs may be ahead of the log.
    EXPECT_GE(done, 5u);
    EXPECT_TRUE(settings.jobs > 1 || done == 5) << done;
    EXPECT_EQ(occurrences(log, ".wav"), done);
    EXPECT_TRUE(log.ends_with(batch_text::kBanner));
    EXPECT_EQ(batch->progress().done, done);
  }
}

// Works until it is told to stop, or fails at once.
class SlowChain : public ChainProcessor {
 public:
  int activePlugins() const override { return 1; }
  std::vector<std::string> takeFaultTexts() override { return {}; }
  ChainResult applyTo(CWave& wave, AudioLock&, int64_t start, int64_t end,
                      const WaveProgress& progress) override {
    EXPECT_EQ(start, end) << "the whole file";
    if (wave.channels() == 2) return ChainResult::failed;
    begun = true;
    while (progress.report(0.5f)) std::this_thread::yield();
    return ChainResult::cancelled;
  }
  std::atomic<bool> begun{false};
};

TEST_F(BatchTest, ASecondStopGivesUpTheFileInWork) {
  addFiles(2);
  fs::rename(folder.file("in/f101.wav"), folder.file("in/a stereo.wav"));
  settings.function = *batchFunctionIn("VST Chain");
  SlowChain chain;
  std::string log;
  BatchRun batch(
      nativeFileSystem(), settings, [&](std::string_view text) { log += text; }, &chain);
  std::thread worker([&] { batch.run(); });
  while (!chain.begun) std::this_thread::yield();
  batch.requestStop();
  batch.requestStop();
  worker.join();
  EXPECT_EQ(log, std::string("a stereo.wav\tExtract ok") + batch_text::kNotApplied + "f100.wav\tExtract ok" +
                     batch_text::kCancelled + batch_text::kBanner);
  EXPECT_TRUE(fs::is_empty(settings.output));
}

TEST_F(BatchTest, AFailingDiskCostsNoOldResultAndNoOtherFile) {
  addFiles(2);
  run();
  const std::string good = result("f100.wav");
  for (int failAt = 0;; ++failAt) {
    SCOPED_TRACE(failAt);
    writeBytes(joinPath(settings.output, "f100.wav"), "old");
    FailingFileSystem files(failAt);
    const std::string log = run(files);
    EXPECT_TRUE(log.ends_with(batch_text::kBanner));
    const bool saved = log.starts_with(std::string("f100.wav\tExtract ok") + batch_text::kApplied);
    EXPECT_EQ(result("f100.wav"), saved ? good : "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(settings.output), {}), 2) << "nothing is left behind";
    if (files.operations() <= failAt) break;
    ASSERT_LT(failAt, 500);
  }
}

// What every format stores comes out as the same WAV that the editor would save.
TEST_F(BatchTest, EveryFormatIsTakenByItsContentOrName) {
  settings.function = *batchFunctionIn("Convert to wav");
  FileSystem& files = nativeFileSystem();
  auto source = countingWave(1, 4000);
  for (int32_t f = 0; f < source->frames(); ++f) source->setSample(f, 0, static_cast<float>(f % 100) / 200);
  source->setBitsPerSample(16);
  source->setFormatTag(kFormatPcm);
  std::map<std::string, std::string> expected;
  for (const Format& format : formatTable()) {
    const std::string name = std::string("sound of ") + format.extensions.front();
    const std::string path = joinPath(settings.input, name + "." + format.extensions.front());
    // Anything might be raw samples, which is why a batch leaves them alone.
    if (format.read == nullptr || format.write == nullptr || &format == &rawFormat()) continue;
    if (!format.write(files, path, *source, {}).saved) continue;
    CWave read;
    ASSERT_EQ(loadForBatch(files, path, read), LoadStatus::loaded) << path;
    EXPECT_GE(read.frames(), source->frames()) << path;
    expected[name + ".wav"] = path;
  }
  const std::string log = run();
  EXPECT_EQ(occurrences(log, std::string("\tExtract ok") + batch_text::kApplied), expected.size()) << log;
  for (const auto& [name, path] : expected) EXPECT_FALSE(result(name).empty()) << path;
}

TEST(BatchLogs, AreMergedInTurnAndMissTheFilesOfAPartThatStopped) {
  const auto done = [](const char* name) { return std::string(name) + "\tExtract ok\tEffect ok\r\n"; };
  const std::string banner = batch_text::kBanner;
  const std::string unsaved = "b\tExtract ok\tUnable to save file /x\r\n\tEffect ok\r\n";
  const auto whole = mergeBatchLogs({done("a") + done("c") + banner, unsaved + banner});
  EXPECT_EQ(whole.text, done("a") + unsaved + done("c") + banner);
  EXPECT_TRUE(whole.endedTooSoon.empty());
  EXPECT_EQ(whole.parts[1].notSaved, 1u);
  const auto stopped = mergeBatchLogs({done("a") + banner, done("b") + done("d") + banner, "c\tExtract ok"});
  EXPECT_EQ(stopped.endedTooSoon, std::vector<size_t>{0});
  EXPECT_EQ(stopped.parts[2].unfinished, 1u);
  EXPECT_FALSE(stopped.parts[2].closed);
}

}  // namespace
}  // namespace plumetta
