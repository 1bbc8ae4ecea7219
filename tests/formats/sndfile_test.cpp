// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cmath>

#include "formats/format.h"
#include "formats/g711.h"
#include "formats/wav_reader.h"
#include "formats/wav_writer.h"
#include "support/failing_file_system.h"
#include "support/temporary_folder.h"
#include "support/wav_bytes.h"

namespace plumetta {
namespace {

using namespace std::string_literals;

class Sndfile : public ::testing::Test {
 protected:
  // A tone in every channel, with full scale and beyond among its samples.
  void fill(int bits, uint16_t tag, int channels, int32_t frames, uint32_t rate = 48000) {
    ASSERT_TRUE(wave_.create(rate, channels, bits, frames, tag));
    for (size_t i = 0; i < wave_.sampleCount(); ++i)
      wave_.samples()[i] = 1.05f * std::sin(0.37f * static_cast<float>(i));
  }
  std::string file(const std::string& extension) { return folder_.file("a." + extension); }
  SaveResult save(const std::string& extension, FileSystem& files = nativeFileSystem()) {
    return writableFormatOfName(file(extension))->write(files, file(extension), wave_, {SyncToDisk::no});
  }
  LoadResult load(const std::string& extension, CWave& wave) {
    const Format* format = formatOfContent(nativeFileSystem(), file(extension));
    if (format == nullptr) return LoadResult::failure("unknown");
    EXPECT_TRUE(format->hasExtension(extension)) << extension << " taken for " << format->name;
    return format->read(nativeFileSystem(), file(extension), {}, wave);
  }
  std::vector<std::string> losses(const std::string& extension) {
    return writableFormatOfName(file(extension))->losses(wave_);
  }

  TemporaryFolder folder_;
  CWave wave_, again_;
};

bool sameSamples(const CWave& a, const CWave& b) {
  return a.frames() == b.frames() && a.channels() == b.channels() &&
         std::equal(a.samples(), a.samples() + a.sampleCount(), b.samples());
}

TEST_F(Sndfile, SameSoundInEachLosslessContainerGivesTheFloatsOfAWav) {
  struct Case {
    std::string extension;
    int bits;
    uint16_t tag;
    int channels;
  };
  for (const Case& c :
       std::vector<Case>{{"aiff", 16, 1, 2}, {"aiff", 24, 1, 1}, {"aiff", 32, 1, 16}, {"aiff", 32, 3, 3},
                         {"aiff", 64, 3, 2}, {"iff", 16, 1, 1},  {"au", 16, 1, 2},    {"au", 24, 1, 6},
                         {"au", 32, 1, 2},   {"au", 32, 3, 1},   {"au", 64, 3, 2},    {"voc", 8, 1, 1},
                         {"voc", 8, 1, 2},   {"voc", 16, 1, 2},  {"caf", 16, 1, 2},   {"caf", 24, 1, 8},
                         {"caf", 32, 1, 2},  {"caf", 32, 3, 2},  {"caf", 64, 3, 1},   {"w64", 8, 1, 2},
                         {"w64", 16, 1, 1},  {"w64", 24, 1, 5},  {"w64", 32, 1, 2},   {"w64", 32, 3, 2},
                         {"w64", 64, 3, 2},  {"flac", 16, 1, 8}, {"flac", 24, 1, 2},  {"rf64", 24, 1, 2},
                         {"rf64", 8, 1, 2},  {"rf64", 32, 3, 2}}) {
    SCOPED_TRACE(c.extension + " " + std::to_string(c.bits) + "/" + std::to_string(c.tag));
    fill(c.bits, c.tag, c.channels, 10000);
    ASSERT_TRUE(save(c.extension).saved);
    const auto result = load(c.extension, again_);
    ASSERT_EQ(result.status, LoadStatus::loaded) << result.reason;
    EXPECT_TRUE(result.warnings.empty() && result.textKinds.empty());
    EXPECT_EQ(again_.bitsPerSample(), c.bits);
    EXPECT_EQ(again_.formatTag(), c.tag);
    EXPECT_EQ(again_.sampleRate(), 48000u);
    CWave wav;
    ASSERT_TRUE(saveWav(nativeFileSystem(), file("wav"), wave_, SyncToDisk::no).saved);
    ASSERT_EQ(loadWav(nativeFileSystem(), file("wav"), wav).status, LoadStatus::loaded);
    EXPECT_TRUE(sameSamples(again_, wav));
  }
}

TEST_F(Sndfile, SignedBytesHaveTheirOwnScale) {
  for (const std::string extension : {"au", "caf", "flac", "iff", "aiff"}) {
    fill(8, kFormatPcm, 1, 5);
    const float values[] = {0.0f, 1.0f, -1.0f, 0.5f, -0.25f};
    std::copy(std::begin(values), std::end(values), wave_.samples());
    ASSERT_TRUE(save(extension).saved);
    ASSERT_EQ(load(extension, again_).status, LoadStatus::loaded);
    ASSERT_EQ(again_.frames(), extension == "aiff" ? 6 : 5) << extension;  // as a WAV, it gets an even size
    EXPECT_EQ(again_.bitsPerSample(), 8);
    const int bytes[] = {0, 127, -128, 64, -32};
    for (int i = 0; i < 5; ++i) {
      EXPECT_EQ(again_.sample(i, 0), static_cast<float>(bytes[i]) / 127.5f) << extension << i;
    }
  }
}

TEST_F(Sndfile, CompandedBytesExpandAsInAWav) {
  std::string codes;
  for (int i = 0; i < 256; ++i) codes += static_cast<char>(i);
  const std::string head = ".snd\0\0\0\x18\0\0\1\0\0\0\0"s, tail = "\0\0\x1F\x40\0\0\0\1"s;
  for (const bool muLaw : {true, false}) {
    writeBytes(file("au"), head + (muLaw ? '\x01' : '\x1B') + tail + codes);
    ASSERT_EQ(load("au", again_).status, LoadStatus::loaded);
    ASSERT_EQ(again_.frames(), 256);
    EXPECT_EQ(again_.bitsPerSample(), 16);
    for (int i = 0; i < 256; ++i) {
      const auto code = static_cast<uint8_t>(i);
      EXPECT_EQ(again_.sample(i, 0),
                static_cast<float>((muLaw ? expandMuLaw(code) : expandALaw(code)) / 32767.0));
    }
  }
}

TEST_F(Sndfile, LossyFormatsKeepTheLengthAndTheSound) {
  fill(16, kFormatPcm, 2, 48000);
  for (size_t i = 0; i < wave_.sampleCount(); ++i) wave_.samples()[i] *= 0.5f;
  wave_.samples()[7] = std::nanf("");
  ASSERT_TRUE(save("opus").saved);
  ASSERT_EQ(load("opus", again_).status, LoadStatus::loaded);
  EXPECT_EQ(again_.frames(), 48000);
  EXPECT_EQ(again_.channels(), 2);
  ASSERT_TRUE(save("ogg").saved);
  EXPECT_TRUE(bytesOf(file("ogg")).substr(28).starts_with("\1vorbis"));
}

TEST_F(Sndfile, MarkersAndLoopsGoWhereThereIsAPlaceForThem) {
  fill(16, kFormatPcm, 2, 1000);
  wave_.markers.add(10, "intro");
  wave_.markers.add(999, std::nullopt);
  LoopRecord loop;
  loop.type = 1;
  loop.start = 100;
  loop.end = 200;
  wave_.loops.add(loop);
  wave_.loops.header.midiUnityNote = 61;
  ASSERT_TRUE(save("aiff").saved);
  ASSERT_EQ(load("aiff", again_).status, LoadStatus::loaded);
  ASSERT_EQ(again_.markers.count(), 2);
  EXPECT_EQ(again_.markers[0].position, 10);
  EXPECT_EQ(again_.markers[0].label, "intro");
  EXPECT_EQ(again_.markers[1].position, 999);
  ASSERT_EQ(again_.loops.count(), 1);
  EXPECT_EQ(again_.loops.start(0), 100);
  EXPECT_EQ(again_.loops.end(0), 200);
  EXPECT_EQ(again_.loops.loop(0).type, 1u);
  EXPECT_EQ(again_.loops.header.midiUnityNote, 61u);
  EXPECT_TRUE(losses("aiff").empty());
  ASSERT_TRUE(save("caf").saved);
  ASSERT_EQ(load("caf", again_).status, LoadStatus::loaded);
  ASSERT_EQ(again_.markers.count(), 2);
  EXPECT_EQ(again_.markers[1].position, 999);
  EXPECT_EQ(losses("caf"), (std::vector<std::string>{"loops", "labels of markers"}));
}

TEST_F(Sndfile, WhatAFileCanNotHoldIsToldOrRefused) {
  fill(24, kFormatPcm, 1, 100);
  EXPECT_TRUE(losses("flac").empty());
  EXPECT_EQ(losses("iff"), std::vector<std::string>{"24 bits: 16 are kept"});
  wave_.setBitsPerSample(32);
  wave_.setFormatTag(kFormatFloat);
  EXPECT_EQ(losses("flac"), std::vector<std::string>{"32-bit floats: 24 bits are kept"});
  wave_.envelope.setLengthField(100);
  wave_.envelope.addChannel();
  wave_.extraChunks.add("ETTA", {});
  EXPECT_EQ(losses("w64"), std::vector<std::string>{"volume envelope"});
  struct Refusal {
    const char* extension;
    int channels;
    uint32_t rate;
    const char* reason;
  };
  for (const Refusal& r :
       {Refusal{"flac", 9, 48000, "FLAC holds at most 8 channels, and this file has 9."},
        Refusal{"iff", 2, 48000, "Amiga IFF holds at most one channel, and this file has 2."},
        Refusal{"iff", 1, 96000, "Amiga IFF holds at most 65535 Hz."},
        Refusal{"opus", 1, 44100,
                "Opus holds 8000, 12000, 16000, 24000 or 48000 Hz, and this file has 44100 Hz: resample it "
                "first."}}) {
    fill(16, kFormatPcm, r.channels, 10, r.rate);
    const auto result = save(r.extension);
    EXPECT_FALSE(result.saved);
    EXPECT_EQ(result.reason, r.reason);
  }
  EXPECT_EQ(folder_.entries(), 0u);
}

TEST_F(Sndfile, NearlyEmptyAndTruncatedFilesGiveWhatIsThere) {
  for (const std::string extension : {"aiff", "au", "voc", "caf", "w64", "flac", "iff", "rf64"}) {
    SCOPED_TRACE(extension);
    fill(16, kFormatPcm, 1, 20000);
    ASSERT_TRUE(save(extension).saved);
    const std::string whole = bytesOf(file(extension));
    writeBytes(file(extension), whole.substr(0, whole.size() * 2 / 3));
    const auto result = load(extension, again_);
    ASSERT_EQ(result.status, LoadStatus::loaded) << result.reason;
    EXPECT_EQ(result.warnings.size(), 1u);
    EXPECT_GT(again_.frames(), 8000);
    EXPECT_LT(again_.frames(), 20000);
    for (const int32_t few : {0, 1, 5}) {
      fill(32, kFormatFloat, 1, few);
      wave_.extraChunks.add("ETTA", std::vector<uint8_t>(32, 0));
      ASSERT_TRUE(save(extension).saved);
      const auto nearlyEmpty = load(extension, again_);
      EXPECT_EQ(nearlyEmpty.status, LoadStatus::loaded) << nearlyEmpty.reason;
      EXPECT_TRUE(nearlyEmpty.warnings.empty());
      EXPECT_EQ(again_.frames(), few);
    }
  }
}

TEST_F(Sndfile, AFailedOrCancelledSaveLeavesTheOldFile) {
  fill(24, kFormatPcm, 2, 60000);
  for (const std::string extension : {"aiff", "flac", "voc", "caf"}) {
    int failures = 0;
    for (int failAt = 0;; ++failAt) {
      writeBytes(file(extension), "old");
      FailingFileSystem files(failAt);
      const auto result = save(extension, files);
      if (result.saved) break;
      EXPECT_FALSE(result.reason.empty());
      ASSERT_EQ(bytesOf(file(extension)), "old") << extension << failAt;
      ++failures;
    }
    EXPECT_GE(failures, 5);
    writeBytes(file(extension), "old");
    wave_.progress = {[](float, void*) { return false; }, nullptr};
    EXPECT_TRUE(save(extension).cancelled);
    EXPECT_EQ(bytesOf(file(extension)), "old");
    wave_.progress = {};
    ASSERT_TRUE(save(extension).saved);
    again_.progress = {[](float, void*) { return false; }, nullptr};
    EXPECT_EQ(load(extension, again_).status, LoadStatus::cancelled);
    again_.progress = {};
  }
  EXPECT_EQ(folder_.entries(), 4u);
}

TEST_F(Sndfile, VoiceFilesAreReadBlockByBlock) {
  const auto block = [](int type, const std::string& body) {
    return little(static_cast<uint64_t>(type), 1) + little(body.size(), 3) + body;
  };
  const std::string header = "Creative Voice File\x1A" + u16(26) + u16(0x0114) + u16(0x111F);
  // 1000000 / (256 - 156) = 10000 Hz.
  writeBytes(file("voc"), header + block(1, "\x9C\0"s + "\x80\xFF") + block(4, u16(7)) +
                              block(6, u16(0xFFFF)) + block(3, u16(2) + "\x9C") + block(2, "\x01\x80") +
                              block(7, "") + block(5, "hi\0"s) + '\0');
  const auto result = load("voc", again_);
  ASSERT_EQ(result.status, LoadStatus::loaded) << result.reason;
  EXPECT_EQ(again_.sampleRate(), 10000u);
  EXPECT_EQ(std::vector<float>(again_.samples(), again_.samples() + again_.frames()),
            (std::vector<float>{0, 1, 0, 0, 0, -1, 0}));
  ASSERT_EQ(again_.markers.count(), 1);
  EXPECT_EQ(again_.markers[0].position, 2);
  EXPECT_EQ(again_.loops.start(0), 2);
  EXPECT_EQ(again_.loops.end(0), 6);
  EXPECT_EQ(result.textKinds, std::vector<std::string>{"text blocks"});
  // Stereo by an extended block: 256000000 / (65536 - 52736) / 2 = 10000 Hz.
  writeBytes(file("voc"), header + block(8, u16(52736) + "\0\1"s) + block(1, "\x9C\0"s + "\x80\xFF\x01\x80"));
  ASSERT_EQ(load("voc", again_).status, LoadStatus::loaded);
  EXPECT_EQ(again_.channels(), 2);
  EXPECT_EQ(again_.frames(), 2);
  EXPECT_EQ(again_.sampleRate(), 10000u);
}

// Made by a program that leaves the depth to the codec's own chunk: channel c holds c + 1 thousand, or as
// many times 256, over eight frames.
TEST_F(Sndfile, AlacWithoutADepthInTheDescriptionComesInTheOrderOfAWav) {
  for (const auto& [name, bits, channels] :
       {std::tuple{"alac16_6.caf", 16, 6}, {"alac24_2.caf", 24, 2}, {"alac24_8.caf", 24, 8}}) {
    SCOPED_TRACE(name);
    writeBytes(file("caf"), bytesOf(std::string(PLUMETTA_CORPUS) + "/sndfile_reader/" + name));
    const auto result = load("caf", again_);
    ASSERT_EQ(result.status, LoadStatus::loaded) << result.reason;
    EXPECT_TRUE(result.warnings.empty());
    EXPECT_EQ(again_.bitsPerSample(), bits);
    ASSERT_EQ(again_.channels(), channels);
    ASSERT_EQ(again_.frames(), 8);
    for (int c = 0; c < channels; ++c) {
      EXPECT_FLOAT_EQ(again_.sample(7, c),
                      static_cast<float>(c + 1) * 1000 / (bits == 16 ? 32767.0f : 32768.0f));
    }
  }
}

TEST_F(Sndfile, ATagAheadOfTheContainerIsLookedBehind) {
  fill(16, kFormatPcm, 2, 5000);
  const std::string tag = "ID3\x04\0\0\0\0\x27\x08"s + std::string(5000, 'x');
  for (const std::string extension : {"aiff", "flac"}) {
    ASSERT_TRUE(save(extension).saved);
    const std::string untagged = bytesOf(file(extension));
    writeBytes(file(extension), tag + untagged);
    const auto result = load(extension, again_);
    ASSERT_EQ(result.status, LoadStatus::loaded) << result.reason;
    EXPECT_TRUE(result.warnings.empty());
    EXPECT_EQ(result.textKinds, std::vector<std::string>{"ID3"});
    EXPECT_EQ(again_.frames(), 5000);
    writeBytes(file("mp3"), tag + untagged);
    EXPECT_TRUE(formatOfContent(nativeFileSystem(), file("mp3"))->hasExtension(extension));
  }
}

TEST_F(Sndfile, WavTellsItsTextOrKeepsTheChunksOfOthers) {
  const std::string behind = chunk("LIST", "INFOIART" + u32(2) + "me") + chunk("bext", "origin!") +
                             chunk("PEAK", "1234") + chunk("id3 ", "ID3xx") + chunk("ETTA", "older");
  writeBytes(file("wav"), plainWav("abcdefgh", behind));
  again_.extraChunks.add("ETTA", std::vector<uint8_t>(32));
  EXPECT_EQ(load("wav", again_).textKinds, (std::vector<std::string>{"LIST/INFO", "bext", "ID3"}));
  EXPECT_EQ(again_.extraChunks.count(), 1);
  OpenOptions keep;
  keep.keepForeignChunks = true;
  EXPECT_TRUE(loadWav(nativeFileSystem(), file("wav"), keep, again_).textKinds.empty());
  ASSERT_EQ(again_.extraChunks.count(), 4);
  EXPECT_TRUE(again_.extraChunks[0].is("LIST") && again_.extraChunks[1].is("bext"));
  EXPECT_EQ(again_.extraChunks[1].data.size(), 7u);
  EXPECT_TRUE(again_.extraChunks[2].is("id3 ") && again_.extraChunks[3].is("ETTA"));
  EXPECT_EQ(writableFormatOfName("a.au")->losses(again_),
            std::vector<std::string>{"chunks of other programs"});
}

}  // namespace
}  // namespace plumetta
