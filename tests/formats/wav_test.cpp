// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "formats/text_export.h"
#include "formats/wav_reader.h"
#include "formats/wav_writer.h"
#include "support/failing_file_system.h"
#include "support/temporary_folder.h"
#include "support/wav_bytes.h"
#include "support/waves.h"

namespace plumetta {
namespace {

class Wav : public ::testing::Test {
 protected:
  LoadResult load(const std::string& bytes) {
    const std::string path = folder_.file("in.wav");
    writeBytes(path, bytes);
    return loadWav(nativeFileSystem(), path, wave_);
  }
  // Saves the buffer and returns the file's bytes.
  std::string saved() {
    const std::string path = folder_.file("out.wav");
    EXPECT_TRUE(saveWav(nativeFileSystem(), path, wave_, SyncToDisk::no).saved);
    return bytesOf(path);
  }
  std::string savedRange(int32_t from, int32_t to) {
    const std::string path = folder_.file("range.wav");
    EXPECT_TRUE(saveWavRange(nativeFileSystem(), path, wave_, from, to, SyncToDisk::no).saved);
    return bytesOf(path);
  }
  static std::string fmtOf(const std::string& bytes) { return bytes.substr(12, 24); }

  TemporaryFolder folder_;
  CWave wave_;
};

TEST_F(Wav, EveryEncodingLoadsAndIsHeldAsStated) {
  struct Case {
    std::string format;
    int bytesPerFrame;
    int tag, bits;  // as held afterwards
  };
  for (const Case& c :
       {Case{formatBody(1, 2, 8000, 8), 2, 1, 8}, Case{formatBody(6, 1, 8000, 8), 1, 1, 8},
        Case{formatBody(7, 1, 8000, 8), 1, 1, 8}, Case{formatBody(1, 1, 8000, 16), 2, 1, 16},
        Case{formatBody(1, 1, 8000, 16) + u16(0), 2, 1, 16}, Case{formatBody(1, 2, 8000, 24), 6, 1, 24},
        Case{formatBody(1, 1, 8000, 32), 4, 1, 32}, Case{formatBody(3, 1, 8000, 32), 4, 3, 32},
        Case{formatBody(3, 1, 8000, 64), 8, 3, 64}, Case{extensibleBody(1, 1, 8000, 16), 2, 1, 16},
        Case{extensibleBody(1, 1, 8000, 24), 3, 1, 24}, Case{extensibleBody(1, 1, 8000, 32), 4, 1, 32},
        Case{extensibleBody(3, 1, 8000, 32), 4, 3, 32}, Case{extensibleBody(7, 1, 8000, 8), 1, 1, 8}}) {
    const std::string data(static_cast<size_t>(c.bytesPerFrame) * 6, '\x3F');
    const auto result = load(riff(chunk("LIST", "odd") + chunk("fmt ", c.format) + chunk("data", data)));
    ASSERT_EQ(result.status, LoadStatus::loaded) << result.reason;
    EXPECT_TRUE(result.warnings.empty());
    EXPECT_EQ(wave_.frames(), 6);
    EXPECT_EQ(wave_.formatTag(), c.tag);
    EXPECT_EQ(wave_.bitsPerSample(), c.bits);
    EXPECT_NE(wave_.sample(5, 0), 0.0f);
    EXPECT_EQ(fmtOf(saved()), chunk("fmt ", formatBody(c.tag, wave_.channels(), 8000, c.bits)));
  }
  load(riff(chunk("fmt ", formatBody(2, 1, 8000, 4)) + chunk("data", "\x78\x12\x34")));
  EXPECT_EQ(wave_.frames(), 6);
  EXPECT_EQ(wave_.bitsPerSample(), 16);
}

TEST_F(Wav, WhatIsNotSupportedSaysSo) {
  EXPECT_EQ(load(riff(chunk("fmt ", formatBody(85, 2, 44100, 0)))).status, LoadStatus::mpegInside);
  EXPECT_EQ(wave_.formatTag(), 1);
  for (const std::string& format :
       {formatBody(0x11, 1, 8000, 16), formatBody(1, 0, 8000, 16), formatBody(1, 17, 8000, 16),
        formatBody(1, 1, 8000, 0), formatBody(1, 1, 8000, 12), formatBody(1, 1, 8000, 4),
        formatBody(2, 1, 8000, 16), extensibleBody(0x55AA, 1, 8000, 16), std::string("\x01\x00")}) {
    const auto result = load(riff(chunk("fmt ", format) + chunk("data", "abcd")));
    EXPECT_EQ(result.status, LoadStatus::failed);
    EXPECT_FALSE(result.reason.empty());
  }
  EXPECT_EQ(load(riff(chunk("data", "abcd"))).status, LoadStatus::failed);
  EXPECT_EQ(formatOfContent(nativeFileSystem(), folder_.path()), nullptr);
  EXPECT_EQ(loadWav(nativeFileSystem(), folder_.file("none"), wave_).status, LoadStatus::failed);
}

TEST_F(Wav, UnknownPairsAreSilenceWithAWarning) {
  const auto result = load(riff(chunk("fmt ", formatBody(3, 1, 8000, 16)) + chunk("data", "abcdef")));
  EXPECT_EQ(result.warnings.size(), 1u);
  EXPECT_EQ(framesIn(wave_), std::vector<int>(3, 0));
}

TEST_F(Wav, AnnotationsTravelThroughAFile) {
  load(plainWav(std::string(200, 'a')));
  wave_.markers.add(70, "lost in the file");
  wave_.markers.add(5);
  wave_.loops.header = {1, 2, 3, 4, 5, 6, 7, 8};
  wave_.loops.add({9, 1, 10, 20, 11, 12});
  wave_.loops.add({10, 0, 30, 40, 0, 0});
  wave_.envelope.setLengthField(100);
  wave_.envelope.addChannel();
  wave_.envelope.insertPoint(50, 0.75f, 0, EnvelopeKind::curve);
  wave_.extraChunks.add("ETTA", std::vector<uint8_t>(31, 'v'));
  const std::string bytes = saved();
  EXPECT_EQ(bytes.substr(4, 4), u32(bytes.size() - 8));
  const std::string smpl = u32(1) + u32(2) + u32(3) + u32(4) + u32(5) + u32(6) + u32(7) + u32(2) + u32(8) +
                           u32(9) + u32(1) + u32(10) + u32(20) + u32(11) + u32(12) + u32(10) + u32(0) +
                           u32(30) + u32(40) + u32(0) + u32(0);
  const auto point = [](int at, uint32_t valueBits, char kind) {
    return u32(static_cast<uint32_t>(at)) + u32(valueBits) + kind + '\0';
  };
  const std::string otom = u32(0) + "PLUMETTA" + u32(0) + u32(0) + u32(0) + "CH" + u16(0) + u32(3) + u16(1) +
                           u32(0) + point(0, 0x3F000000, 0) + point(50, 0x3F400000, 3) +
                           point(99, 0x3F000000, 0);
  EXPECT_EQ(bytes.substr(44 + 200), chunk("smpl", smpl) + chunk("cue ", cueBody({70, 5})) +
                                        chunk("otom", otom) + chunk("ETTA", std::string(31, 'v')));
  CWave again;
  loadWav(nativeFileSystem(), folder_.file("out.wav"), again);
  EXPECT_EQ(markerPositions(again), (std::vector<int>{70, 5}));
  EXPECT_EQ(again.markers[0].id, 1u);
  EXPECT_EQ(again.loops.loop(1).end, 40);
  EXPECT_EQ(again.loops.header.midiUnityNote, 4u);
  EXPECT_EQ(again.envelope.point(1, 0).kind, EnvelopeKind::curve);
  EXPECT_EQ(again.envelope.length(), 100);
}

TEST_F(Wav, OddDataGetsASilentFrameOrAPadByte) {
  wave_.create(8000, 1, 8, 101, 1);
  wave_.envelope.setLengthField(101);
  wave_.envelope.addChannel();
  const std::string bytes = saved();
  EXPECT_EQ(bytes.substr(40, 4), u32(102));
  EXPECT_EQ(bytes[44 + 101], '\x80');
  EXPECT_EQ(wave_.frames(), 101);  // the buffer's turn comes when the save has succeeded
  ASSERT_TRUE(wave_.appendEvenFrame());
  EXPECT_EQ(saved(), bytes);
}

TEST_F(Wav, RangesAreWrittenWithTheirOwnAnnotations) {
  load(plainWav(std::string(60, 'a')));
  wave_.markers.add(5);
  wave_.markers.add(11);
  wave_.loops.add({0, 0, 6, 9, 0, 0});
  wave_.loops.add({0, 0, 0, 6, 0, 0});
  wave_.envelope.setLengthField(30);
  wave_.envelope.addChannel();
  const std::string bytes = savedRange(10, 5);
  EXPECT_EQ(bytes.substr(36), chunk("data", std::string(12, 'a')) + chunk("cue ", cueBody({0})) +
                                  chunk("smpl", std::string(28, '\0') + u32(1) + u32(0) + u32(0) + u32(0) +
                                                    u32(1) + u32(4) + u32(0) + u32(0)));
  EXPECT_FALSE(saveWavRange(nativeFileSystem(), folder_.file("x"), wave_, 0, 30, SyncToDisk::no).saved);

  wave_.create(8000, 1, 8, 9, 1);
  EXPECT_EQ(savedRange(0, 2).substr(40, 4), u32(4));  // three frames grow by one
  EXPECT_EQ(savedRange(0, 8).substr(40, 4), u32(8));  // the whole file can only shrink
  EXPECT_EQ(savedRange(8, 8).substr(44, 2), "\x80\x80");
}

TEST_F(Wav, SplitWritesOneFileARegion) {
  load(plainWav(std::string(2000, 'a')));
  for (int p : {600, 300}) wave_.markers.add(p);
  EXPECT_TRUE(splitAtMarkers(nativeFileSystem(), folder_.file("part"), wave_, SyncToDisk::no).saved);
  const int frames[] = {301, 301, 400};
  for (int i = 0; i < 3; ++i) {
    const std::string bytes = bytesOf(folder_.file("part_M00" + std::to_string(i) + ".wav"));
    EXPECT_EQ(bytes.substr(40, 4), u32(static_cast<uint64_t>(frames[i]) * 2));
  }
  EXPECT_EQ(folder_.entries(), 4u);
}

// Every number of a rich file set to what nobody expects, and the file cut at every byte: whatever is sound
// loads, and nothing is believed that the bytes don't hold.
TEST_F(Wav, DamageNeverCostsMoreThanWhatItHits) {
  const std::string otom = u32(0) + "PLUMETTA" + u32(0) + u32(0) + u32(0) + "CH" + u16(0) + u32(2) + u16(1) +
                           u32(0) + u32(0) + u32(0x3F000000) + u16(0) + u32(49) + u32(0x3F000000) + u16(0);
  const std::string whole =
      plainWav(std::string(100, 'a'), chunk("smpl", std::string(36, '\x01')) +
                                          chunk("cue ", cueBody({1, 2, 3})) + chunk("otom", otom));
  for (size_t at = 4; at + 4 <= whole.size(); ++at) {
    for (const uint64_t value :
         {uint64_t{0}, uint64_t{1}, uint64_t{0x7FFFFFFF}, uint64_t{0x80000000}, uint64_t{0xFFFFFFFF}}) {
      std::string bytes = whole;
      bytes.replace(at, 4, u32(value));
      const auto result = load(bytes);
      ASSERT_LE(static_cast<size_t>(wave_.frames()), whole.size());
      ASSERT_LE(static_cast<size_t>(wave_.markers.count()), whole.size() / 24);
      ASSERT_TRUE(result.status != LoadStatus::failed || !result.reason.empty());
      if (at >= 144) {
        ASSERT_EQ(wave_.frames(), 50);  // damaged annotations
      }
      for (int i = 1; i < wave_.envelope.pointCount(0); ++i) {
        ASSERT_LE(wave_.envelope.point(i - 1, 0).position, wave_.envelope.point(i, 0).position);
      }
    }
  }
  for (size_t length = 0; length < whole.size(); ++length) {
    const auto result = load(whole.substr(0, length));
    if (length < 44) continue;
    ASSERT_EQ(result.status, LoadStatus::loaded);
    ASSERT_EQ(wave_.frames(), static_cast<int>(std::min<size_t>((length - 44) / 2, 50)));
    ASSERT_EQ(result.warnings.size(), length < 144 ? 1u : 0u);
  }
}

TEST_F(Wav, SurplusInAChunkAndSecondChunksAreIgnored) {
  const std::string bytes =
      riff(chunk("fmt ", formatBody(1, 1, 8000, 16)) + chunk("data", "aabbccdd") +
           chunk("fmt ", formatBody(1, 2, 8000, 8)) + chunk("data", "zz") +
           chunk("cue ", cueBody({1}) + "surplus") +
           chunk("smpl", std::string(28, '\0') + u32(30) + u32(0) + std::string(24 * 30, '\0')) +
           chunk("cue ", cueBody({2, 900})));
  load(bytes);
  EXPECT_EQ(wave_.frames(), 4);
  EXPECT_EQ(wave_.loops.count(), 10);
  EXPECT_EQ(markerPositions(wave_), (std::vector<int>{2, 3}));
}

// Each operation of the disk fails in turn, through everything that writes a file.
TEST_F(Wav, AFailedSaveLeavesTheOldFileAndNothingElse) {
  load(plainWav(std::string(600000, 'a')));
  const std::string path = folder_.file("kept.wav");
  using Save = std::function<SaveResult(FileSystem&)>;
  const Save saves[] = {
      [&](FileSystem& files) { return saveWav(files, path, wave_, SyncToDisk::yes); },
      [&](FileSystem& files) { return saveWavRange(files, path, wave_, 0, 299999, SyncToDisk::yes); },
      [&](FileSystem& files) { return exportWaveAsText(files, path, wave_, SyncToDisk::yes); },
      [&](FileSystem& files) { return writeTextFile(files, path, std::string(300000, 't')); },
  };
  for (const Save& save : saves) {
    writeBytes(path, "old");
    int failures = 0;
    for (int failAt = 0;; ++failAt) {
      FailingFileSystem files(failAt);
      const auto result = save(files);
      EXPECT_EQ(folder_.entries(), 2u);
      if (result.saved) break;
      EXPECT_FALSE(result.reason.empty());
      ASSERT_EQ(bytesOf(path), "old") << failAt;
      ++failures;
    }
    EXPECT_GE(failures, 7);  // access, making, two writes and more, sync, close, permissions, replacing
    EXPECT_GE(bytesOf(path).size(), 300000u);
  }
  EXPECT_FALSE(saveWav(nativeFileSystem(), folder_.path(), wave_, SyncToDisk::yes).saved);
  EXPECT_FALSE(saveWav(nativeFileSystem(), folder_.file("no/such/x.wav"), wave_, SyncToDisk::yes).saved);

  const std::string before = bytesOf(path);
  wave_.progress = {[](float, void*) { return false; }, nullptr};
  const auto cancelled = saveWav(nativeFileSystem(), path, wave_, SyncToDisk::yes);
  EXPECT_TRUE(cancelled.cancelled);
  EXPECT_EQ(bytesOf(path), before);
  EXPECT_EQ(folder_.entries(), 2u);
}

TEST_F(Wav, NamesInAnyScriptUpToTheLongestThatADiskTakes) {
  load(plainWav("abcd"));
  for (const std::string& name : {std::string("пёрышко 羽.wav"), std::string(251, 'n') + ".wav"}) {
    EXPECT_TRUE(saveWav(nativeFileSystem(), folder_.file(name), wave_, SyncToDisk::no).saved);
    CWave again;
    EXPECT_EQ(loadWav(nativeFileSystem(), folder_.file(name), again).status, LoadStatus::loaded);
  }
}

TEST_F(Wav, WhatNoRiffFileHoldsIsRefusedBeforeAnythingIsWritten) {
  ASSERT_TRUE(wave_.create(8000, 1, 64, 540000000, 3));  // never touched, so it costs no memory
  const auto result = saveWav(nativeFileSystem(), folder_.file("big.wav"), wave_, SyncToDisk::no);
  EXPECT_FALSE(result.saved);
  EXPECT_EQ(folder_.entries(), 0u);
}

}  // namespace
}  // namespace plumetta
