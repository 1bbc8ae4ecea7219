// SPDX-License-Identifier: GPL-3.0-or-later
// Recording as a window's buttons drive it, with a device and a disk that do what a test tells them.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "app/recorder.h"
#include "doc/command.h"
#include "doc/take_import.h"
#include "platform/paths.h"
#include "support/failing_file_system.h"
#include "support/fake_wave_in.h"
#include "support/recording_prompter.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

using namespace std::string_literals;
using Texts = std::vector<std::string>;

// A disk on which takes meet what the test wants.
class TakeDisk : public FailingFileSystem {
 public:
  TakeDisk() : FailingFileSystem(-1) {}
  bool refusesTakes = false, refusesReading = false;
  int64_t room = INT64_MAX;  // bytes of takes
  std::atomic<bool> hangs{false};
  std::atomic<int> openTakes{0};

  std::unique_ptr<File> createNew(const std::string& path, std::error_code& error) override {
    error = std::make_error_code(std::errc::permission_denied);
    if (path.ends_with(".rec") && refusesTakes) return nullptr;
    auto file = FailingFileSystem::createNew(path, error);
    return path.ends_with(".rec") ? std::make_unique<BoundedFile>(std::move(file), *this) : std::move(file);
  }
  std::unique_ptr<File> openForReading(const std::string& path, std::error_code& error) override {
    error = std::make_error_code(std::errc::io_error);
    if (path.ends_with(".rec") && refusesReading) return nullptr;
    return FailingFileSystem::openForReading(path, error);
  }

 private:
  struct BoundedFile : File {
    BoundedFile(std::unique_ptr<File> target, TakeDisk& owner)
        : disk(owner), file(std::move(target)), room(owner.room) {
      ++disk.openTakes;
    }
    ~BoundedFile() override {
      file.reset();
      --disk.openTakes;
    }
    size_t read(void* to, size_t bytes, std::error_code& error) override {
      return file->read(to, bytes, error);
    }
    std::error_code write(const void* source, size_t bytes) override {
      while (disk.hangs) std::this_thread::sleep_for(std::chrono::milliseconds(5));
      const auto part = static_cast<size_t>(std::min<int64_t>(room, static_cast<int64_t>(bytes)));
      file->write(source, part);
      room -= static_cast<int64_t>(part);
      return part < bytes ? std::make_error_code(std::errc::no_space_on_device) : std::error_code{};
    }
    std::error_code seek(uint64_t offset) override { return file->seek(offset); }
    uint64_t size() const override { return file->size(); }
    std::error_code sync() override { return file->sync(); }
    std::error_code close() override { return file->close(); }
    TakeDisk& disk;
    std::unique_ptr<File> file;
    int64_t room;
  };
};

class Recording : public testing::Test, public RecorderHost {
 protected:
  static constexpr int kBlock = 100;

  Recording() {
    app.settings().recording.bufferFrames = kBlock;
    app.settings().recording.sampleRate = 11025;
  }
  CPlumettaDoc* activeDocument() override { return active; }
  void stopPlayer() override { ++playerStops; }
  void recorded(CPlumettaDoc& document) override { result = &document; }

  void deliver(int blocks) {
    for (int i = 1; i <= blocks; ++i) ASSERT_TRUE(fake.deliver16(static_cast<int16_t>(i), kBlock));
  }
  // One recording of so many blocks, block i holding the value i / 32768.
  void record(int blocks) {
    ASSERT_TRUE(recorder.toggleRecord());
    deliver(blocks);
    recorder.toggleRecord();
  }
  void watchUntilStopped() {
    EXPECT_TRUE(FakeWaveIn::eventually([this] {
      recorder.watch();
      return !recorder.recording();
    }));
  }
  Texts files(const std::string& ending) {
    Texts found;
    for (const std::string& name : nativeFileSystem().list(app.homeFolder())) {
      if (name.starts_with("~plumetta_2") && name.ends_with(ending))
        found.push_back(joinPath(app.homeFolder(), name));
    }
    std::sort(found.begin(), found.end());
    return found;
  }
  std::string onlyTake() {
    const Texts takes = files(".rec");
    return takes.size() == 1 ? takes[0] : "not one take";
  }
  void expectTake(const CWave& wave, int32_t at, int32_t frames) {
    for (int32_t frame = 0; frame < frames; ++frame) {
      const float value = static_cast<float>(frame / kBlock + 1) / 32768;
      ASSERT_EQ(wave.sample(at + frame, 0), value) << frame;
      ASSERT_EQ(wave.sample(at + frame, 1), value) << frame;
    }
  }

  TemporaryFolder folder;
  TakeDisk disk;
  RecordingPrompter prompter;
  Application app{prompter, disk, folder.file("home")};
  FakeWaveIn fake;
  CPlumettaDoc* active = nullptr;
  CPlumettaDoc* result = nullptr;
  int playerStops = 0;
  StillTimer timer;
  Recorder recorder{app, *this, fake, timer};
};

TEST_F(Recording, BecomesANewDocument) {
  active = app.newDocument(44100, 1, 16, 10, kFormatPcm);
  app.settings().recording.bitDepth = 16;
  record(111);  // 11100 frames at 11025 Hz
  ASSERT_NE(result, nullptr);
  ASSERT_NE(result, active);
  const CWave& wave = result->wave();
  EXPECT_EQ(std::vector({wave.frames(), wave.channels(), wave.bitsPerSample(), int(wave.sampleRate())}),
            std::vector({11100, 2, 16, 11025}));
  expectTake(wave, 0, 11100);
  EXPECT_EQ(result->title(), "record.wav");
  EXPECT_EQ(wave.fileName(), "record.wav");
  EXPECT_TRUE(result->modified());
  EXPECT_EQ(app.history().names(), Texts{"Record : 1.0 seconds"});
  EXPECT_EQ(prompter.messages, Texts{});
  EXPECT_EQ(files(""), Texts{}) << "nothing stays behind";
  EXPECT_EQ(fake.opened, fake.closed);
}

TEST_F(Recording, GoesIntoTheActiveDocumentAndIsUndone) {
  app.settings().recording.alwaysNewDocument = false;
  app.settings().recording.bitDepth = 24;
  active = app.newDocument(44100, 1, 16, 1000, kFormatPcm);
  ASSERT_TRUE(recorder.toggleRecord());
  ASSERT_TRUE(fake.deliver(std::vector<uint8_t>(6 * kBlock, 0x40)));
  recorder.toggleRecord();
  EXPECT_EQ(result, active);
  const CWave& wave = active->wave();
  EXPECT_EQ(std::vector({wave.frames(), wave.channels(), wave.bitsPerSample(), int(wave.sampleRate())}),
            std::vector({1000 + kBlock, 2, 24, 11025}));
  EXPECT_EQ(wave.sample(999, 1), float(0x404040) / (1 << 23)) << "before the last frame";
  ASSERT_EQ(runCommand(*active, *findCommand("undo")), CommandOutcome::done);
  EXPECT_EQ(std::vector({wave.frames(), wave.channels(), wave.bitsPerSample(), int(wave.sampleRate())}),
            std::vector({1000, 1, 16, 44100}));
  EXPECT_EQ(playerStops, 1);
}

TEST_F(Recording, SharesTheInputWithMonitoring) {
  EXPECT_TRUE(recorder.toggleMonitor());
  deliver(3);
  EXPECT_EQ(recorder.takeInputPeak(0), 3.0f / 32768);
  record(2);
  EXPECT_EQ(result->wave().frames(), 2 * kBlock);
  EXPECT_EQ(fake.opened, 1);
  EXPECT_EQ(fake.closed, 0) << "monitoring goes on";
  deliver(5);
  EXPECT_EQ(recorder.takeInputPeak(1), 5.0f / 32768);
  ASSERT_TRUE(recorder.toggleRecord());
  recorder.toggleMonitor();
  deliver(1);
  recorder.toggleRecord();
  EXPECT_EQ(result->wave().frames(), kBlock);
  EXPECT_EQ(fake.closed, 1);
  EXPECT_FALSE(recorder.busy());
}

TEST_F(Recording, SaysWhyItCannotBegin) {
  fake.openError = FakeWaveIn::kRefused;
  EXPECT_FALSE(recorder.toggleRecord());
  EXPECT_FALSE(recorder.toggleMonitor());
  fake.openError = FakeWaveIn::kOk;
  disk.refusesTakes = true;
  EXPECT_FALSE(recorder.toggleRecord());
  const std::string refused =
      "Unable to start audio driver in\nfake error " + std::to_string(FakeWaveIn::kRefused);
  EXPECT_EQ(prompter.messages, (Texts{refused, refused, "Unable to create recording file"}));
  EXPECT_FALSE(recorder.busy());
  EXPECT_EQ(fake.opened, fake.closed);
  EXPECT_EQ(files(""), Texts{});
}

TEST_F(Recording, EndsWithItsDeviceAndKeepsWhatCame) {
  recorder.toggleMonitor();
  ASSERT_TRUE(recorder.toggleRecord());
  deliver(3);
  fake.failureTold = FakeWaveIn::kGone;
  watchUntilStopped();
  EXPECT_EQ(prompter.messages, Texts{"The recording has stopped.\nfake error 8"});
  EXPECT_FALSE(recorder.busy()) << "nor is there anything to monitor";
  ASSERT_NE(result, nullptr);
  expectTake(result->wave(), 0, 3 * kBlock);
}

TEST_F(Recording, EndsWithAFullDiskAndKeepsWhatIsOnIt) {
  disk.room = 8 * kBlock * 2 + 5;  // two blocks and a part of a frame
  ASSERT_TRUE(recorder.toggleRecord());
  deliver(4);
  watchUntilStopped();
  ASSERT_EQ(prompter.messages.size(), 2u);
  EXPECT_TRUE(prompter.messages[0].starts_with("The recording has stopped.\n"));
  EXPECT_TRUE(prompter.messages[1].ends_with("\nIt ends in the middle of a frame."));
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(result->wave().frames(), 2 * kBlock);
  expectTake(result->wave(), 0, 2 * kBlock);
}

TEST_F(Recording, KeepsTheFileThatADiskIsStillWriting) {
  Recorder patient{app, *this, fake};  // by the real time, in which a disk can be too slow
  ASSERT_TRUE(patient.toggleRecord());
  disk.hangs = true;
  deliver(4);
  patient.toggleRecord();
  const std::string take = onlyTake();
  ASSERT_EQ(prompter.messages.size(), 1u);
  EXPECT_NE(prompter.messages[0].find(take), std::string::npos) << prompter.messages[0];
  disk.hangs = false;
  EXPECT_TRUE(FakeWaveIn::eventually([this] { return disk.openTakes == 0; }));
  std::string reason;
  EXPECT_EQ(framesOfTake(nativeFileSystem(), take, 2, reason), 4 * kBlock);
}

TEST_F(Recording, KeepsTheFileThatCannotBeImported) {
  disk.refusesReading = true;
  record(2);
  const std::string take = onlyTake();
  EXPECT_EQ(prompter.messages.back(),
            "Error importing recorded file:\r\n" + take + "\r\nThe file has been saved and kept\n");
  EXPECT_EQ(bytesOf(take).size(), 8u * 2 * kBlock);
  EXPECT_EQ(app.documents().size(), 0u);
  disk.refusesReading = false;
  EXPECT_EQ(recorder.offerRecovery(), 1);
  expectTake(result->wave(), 0, 2 * kBlock);
  EXPECT_EQ(files(""), Texts{});
}

TEST_F(Recording, WithDurationEndsAtTheTickBehindIt) {
  EXPECT_EQ(recorder.storedDuration(), 60);
  ASSERT_TRUE(recorder.recordWithDuration(5));
  EXPECT_EQ(prompter.lastStatus, "Recording during : 5 seconds");
  EXPECT_EQ(recorder.storedDuration(), 5);
  EXPECT_FALSE(recorder.mayRecordWithDuration());
  EXPECT_EQ(prompter.messages, Texts{"Still recording, stop the current capture first..."});
  deliver(221);  // two seconds and a bit
  for (const char* title :
       {"Recording : 2 seconds", "", "Recording : 2 seconds", "", "Recording : 2 seconds"}) {
    recorder.everySecond();
    EXPECT_EQ(recorder.blinkTitle(), title);
    EXPECT_EQ(recorder.buttonMarked(), *title != '\0');
    EXPECT_TRUE(recorder.recording());
  }
  recorder.everySecond();
  EXPECT_FALSE(recorder.recording());
  EXPECT_FALSE(recorder.buttonMarked());
  EXPECT_EQ(app.history().names(), Texts{"Record : 2.0 seconds"});
}

TEST_F(Recording, AsksBeforeItIsEnded) {
  ASSERT_TRUE(recorder.toggleRecord());
  deliver(1);
  prompter.answer = false;
  EXPECT_FALSE(recorder.confirmConfiguration());
  EXPECT_FALSE(recorder.confirmClose());
  EXPECT_TRUE(recorder.recording());
  prompter.answer = true;
  recorder.toggleMonitor();
  EXPECT_TRUE(recorder.confirmConfiguration());
  EXPECT_FALSE(recorder.busy());
  EXPECT_NE(result, nullptr);
  ASSERT_TRUE(recorder.toggleRecord());
  deliver(3);
  EXPECT_TRUE(recorder.confirmClose());
  EXPECT_TRUE(recorder.confirmClose()) << "nothing to ask any more";
  EXPECT_EQ(prompter.questions,
            (Texts{"Recording: do you want to stop?", "Recording: do you want to quit?",
                   "Recording: do you want to stop?", "Recording: do you want to quit?"}));
  EXPECT_EQ(bytesOf(onlyTake()).size(), 8u * 3 * kBlock) << "it waits for the next start";
}

TEST_F(Recording, PutsBackARateThatTheDeviceDoesNotTake) {
  app.settings().recording.sampleRate = 96000;
  recorder.checkInputRate();
  EXPECT_EQ(prompter.messages, Texts{});
  app.settings().recording.sampleRate = 48000;
  recorder.checkInputRate();
  EXPECT_EQ(prompter.messages, Texts{"Warning frequency for input seems not supported, reset to 44100Hz"});
  EXPECT_EQ(app.settings().recording.sampleRate, 44100);
  EXPECT_NE(bytesOf(folder.file("home/plumetta.cfg")).find("AudioInSampleRate=44100"), std::string::npos);
}

// ---- After a crash --------------------------------------------------------------------------------------

TEST_F(Recording, OffersTakesOfRunsThatEndedUnlessKeptOnPurpose) {
  app.settings().recording.keepFiles = true;
  record(2);
  const std::string kept = onlyTake();
  EXPECT_EQ(recorder.keptFile(), kept);
  EXPECT_EQ(recorder.offerRecovery(), 0);
  EXPECT_EQ(prompter.questions, Texts{});
  EXPECT_EQ(bytesOf(kept).size(), 8u * 2 * kBlock);
  app.settings().recording.keepFiles = false;

  // One that is being written, by this process or another, is nobody else's.
  ASSERT_TRUE(recorder.toggleRecord());
  Recorder other(app, *this, fake, timer);
  EXPECT_EQ(other.offerRecovery(), 0);
  EXPECT_EQ(prompter.questions, Texts{});
  recorder.toggleRecord();
}

TEST_F(Recording, RecoversWhatIsSoundInATake) {
  const std::string sound(8 * 25, '\0');
  const std::string noNumber = "\0\0\xC0\x7F"s;
  const struct {
    const char* name;
    std::string bytes, info;
    int channels, rate, frames;
  } cases[] = {
      {"whole", sound, "rate=48000\nchannels=2\nbits=24\nkept=0\n", 2, 48000, 25},
      {"cut short", sound + "abc", "rate=48000\nchannels=2\nbits=24\nkept=0\n", 2, 48000, 25},
      {"no numbers", noNumber + noNumber + sound, "rate=44100\nchannels=2\nbits=16\n", 2, 44100, 26},
      {"garbage beside it", sound, "rate=7\nchannels=99\n\n=\nbits", 2, 11025, 25},
      {"nothing beside it but a name", sound, "", 2, 11025, 25},
      {"another layout", sound, "channels=1\r\nrate=22050", 1, 22050, 50},
  };
  const std::string path = folder.file("home/~plumetta_20200101000000.rec");
  for (const auto& each : cases) {
    writeBytes(path, each.bytes);
    writeBytes(path + ".info", each.info);
    ASSERT_EQ(recorder.offerRecovery(), 1) << each.name;
    const CWave& wave = result->wave();
    EXPECT_EQ(std::vector({wave.channels(), int(wave.sampleRate()), wave.frames()}),
              std::vector({each.channels, each.rate, each.frames}))
        << each.name;
    EXPECT_EQ(wave.sample(0, 0), 0.0f) << each.name;
    EXPECT_EQ(files(""), Texts{}) << each.name;
  }
  EXPECT_EQ(prompter.questions.size(), std::size(cases));
}

TEST_F(Recording, DeclinedTakeStaysAndIsNotOfferedAgain) {
  const std::string path = folder.file("home/~plumetta_20200101000000.rec");
  writeBytes(path, std::string(80, '\0'));
  writeBytes(path + ".info", "rate=48000\n");
  writeBytes(folder.file("home/~plumetta_20200101000001.rec"), std::string(80, '\0'));  // somebody's own
  prompter.answer = false;
  EXPECT_EQ(recorder.offerRecovery(), 0);
  EXPECT_EQ(recorder.offerRecovery(), 0);
  EXPECT_EQ(prompter.questions.size(), 1u);
  EXPECT_EQ(files(".rec").size(), 2u);
}

}  // namespace
}  // namespace plumetta
