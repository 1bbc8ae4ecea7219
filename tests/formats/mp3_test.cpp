// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cmath>

#include "formats/mp3_frame_scan.h"
#include "formats/mp3_reader.h"
#include "formats/mp3_writer.h"
#include "platform/paths.h"
#include "support/failing_file_system.h"
#include "support/memory_file_system.h"
#include "support/mpeg_frames.h"
#include "support/temporary_folder.h"
#include "support/wav_bytes.h"

namespace plumetta {
namespace {

const std::string kId3v1 = "TAG" + std::string(125, ' ');

// ---- Reading --------------------------------------------------------------------------------------------

TEST(Mp3Scan, WalksOverFrameHeaders) {
  struct Case {
    std::string bytes;
    size_t firstFrame;
    int64_t frames;
    uint32_t rate;
    int channels;
  };
  for (const Case& c : {
           Case{stereoFrames(3), 0, 3456, 44100, 2},
           Case{lowMonoFrames(4), 0, 2304, 22050, 1},
           Case{layer2Frames(2), 0, 2304, 44100, 2},
           Case{layer1Frames(5), 0, 1920, 44100, 2},
           Case{mpegFrame("\xFF\xFB\x92\xC0", 418) + monoFrames(1), 0, 2304, 44100, 1},  // padded
           Case{monoFrames(1) + stereoFrames(1) + lowMonoFrames(1), 0, 2880, 22050, 2},
           // 0x0201 in steps of seven bits are 257 bytes, whatever is in them
           Case{id3Tag({"\0\0\2\1", 4}, repeated("\xFF\xFB\x90", 85) + "ab") + monoFrames(2), 267, 2304,
                44100, 1},
           Case{id3Tag("\x7F\x7F\x7F\x7F", "") + monoFrames(2), 10, 2304, 44100, 1},
           // A reserved sample rate and a free bit rate skip three bytes, others one
           Case{"\xFF\xFB\x9C" + std::string("\xFF\xFB\x01", 3) + "ab" + monoFrames(2), 8, 2304, 44100, 1},
           Case{std::string(64000, '\0'), 0, 2 * 8 * 44100, 44100, 1},
           Case{"", 0, 0, 44100, 1},
       }) {
    const auto* data = reinterpret_cast<const uint8_t*>(c.bytes.data());
    const auto scan = scanMp3Frames({data, c.bytes.size()}, {});
    ASSERT_TRUE(scan);
    EXPECT_EQ(scan->firstFrame, c.firstFrame);
    EXPECT_EQ(scan->frames, c.frames);
    EXPECT_EQ(scan->sampleRate, c.rate);
    EXPECT_EQ(scan->channels, c.channels);
  }
}

struct Loaded {
  LoadResult result;
  std::unique_ptr<CWave> wave = std::make_unique<CWave>();
  std::string format;
};

// By way of the table, as a document opens a file.
Loaded openBytes(const std::string& bytes, const std::string& name = "in.mp3") {
  MemoryFileSystem files;
  files.contents[name] = bytes;
  Loaded loaded;
  if (const Format* format = formatOfContent(files, name)) {
    loaded.format = format->extensions.front();
    loaded.result = format->read(files, name, {}, *loaded.wave);
  } else {
    loaded.result.status = LoadStatus::failed;
  }
  return loaded;
}

TEST(Mp3Reader, KeepsEveryFrameThatCanBeDecoded) {
  const std::string riffBody = chunk("fmt ", formatBody(85, 2, 44100, 0)) + chunk("data", stereoFrames(4));
  struct Case {
    std::string bytes;
    int32_t frames;
    uint32_t rate;
    int channels;
    size_t warnings = 0, kinds = 0;
    std::string name = "in.mp3";
  };
  for (const Case& c : {
           Case{stereoFrames(4), 4608, 44100, 2},
           Case{lowMonoFrames(4), 2304, 22050, 1, 0, 0, "wrong.wav"},
           Case{layer2Frames(3), 3456, 44100, 2, 0, 0, "in.mp2"},
           Case{layer1Frames(30), 11520, 44100, 2},
           Case{stereoFrames(4) + kId3v1, 4608, 44100, 2, 0, 1},
           Case{id3Tag({"\0\0\2\1", 4}, std::string(257, '\xFF')) + stereoFrames(4), 4608, 44100, 2, 0, 1},
           Case{id3Tag("\x7F\x7F\x7F\x7F", "") + stereoFrames(4), 4608, 44100, 2, 0, 1},
           Case{monoFrames(3) + stereoFrames(3), 6912, 44100, 2},
           Case{monoFrames(3) + lowMonoFrames(3), 5184, 22050, 1, 1},
           Case{stereoFrames(5).substr(0, 2000), 4608, 44100, 2, 1},
           Case{std::string(700, 'x') + stereoFrames(4), 4608, 44100, 2},
           Case{std::string(9000, 'x') + stereoFrames(4), 4608, 44100, 2},
           Case{stereoFrames(1), 1152, 44100, 2},
           Case{id3Tag({"\0\0\x27\x08", 4}, std::string(5000, 'x')) + stereoFrames(4), 4608, 44100, 2, 0, 1,
                "in.flac"},
           Case{riff(riffBody), 4608, 44100, 2, 0, 0, "in.wav"},
       }) {
    const Loaded loaded = openBytes(c.bytes, c.name);
    ASSERT_EQ(loaded.result.status, LoadStatus::loaded) << loaded.result.reason;
    EXPECT_EQ(loaded.wave->frames(), c.frames);
    EXPECT_EQ(loaded.wave->sampleRate(), c.rate);
    EXPECT_EQ(loaded.wave->channels(), c.channels);
    EXPECT_EQ(loaded.wave->bitsPerSample(), 16);
    EXPECT_EQ(loaded.result.warnings.size(), c.warnings);
    EXPECT_EQ(loaded.result.textKinds, std::vector<std::string>(c.kinds, "ID3"));
    EXPECT_EQ(loaded.wave->sample(c.frames - 1, c.channels - 1), 0.0f);
  }
}

TEST(Mp3Reader, RefusesWhatIsNoneWithASentence) {
  for (const std::string& bytes :
       {std::string(), std::string("Hello.\n"), std::string(100000, '\xFF'), kId3v1,
        id3Tag({"\0\0\2\1", 4}, std::string(257, 'x')), stereoFrames(1).substr(0, 300),
        std::string(9000, 'x') + stereoFrames(2) + std::string(9000, 'x')}) {  // by chance
    const Loaded loaded = openBytes(bytes);
    EXPECT_EQ(loaded.format, "mp3");
    EXPECT_EQ(loaded.result.status, LoadStatus::failed);
    EXPECT_FALSE(loaded.result.reason.empty());
    EXPECT_EQ(loaded.wave->frames(), 0);
  }
  for (const std::string& bytes : {std::string("\xFF\xFEH\0i\0", 6), std::string("fLaC") + stereoFrames(9),
                                   std::string("Hello.\n"), std::string(5000, '\xFF')}) {
    EXPECT_NE(openBytes(bytes, "in.txt").format, "mp3");
  }
  EXPECT_EQ(openBytes(plainWav(stereoFrames(9)), "in.mp3").format, "wav");
}

TEST(Mp3Reader, StopsWhenAsked) {
  MemoryFileSystem files;
  files.contents["in"] = stereoFrames(1000);
  for (int allowed : {0, 1, 5}) {
    CWave wave;
    wave.progress = {[](float, void* left) { return --*static_cast<int*>(left) >= 0; }, &allowed};
    EXPECT_EQ(loadMp3(files, "in", wave).status, LoadStatus::cancelled);
    EXPECT_EQ(wave.frames(), 0);
  }
}

// ---- Writing --------------------------------------------------------------------------------------------

TEST(Mp3Writer, StoresInTheStreamThatLosesLeast) {
  struct Case {
    uint32_t rate;
    int wanted, stored, kbits;
  };
  for (const Case& c :
       {Case{44100, 128, 44100, 128}, Case{44100, 24, 22050, 24}, Case{48000, 20, 24000, 24},
        Case{44100, 31, 44100, 32}, Case{44100, 999, 44100, 320}, Case{22050, 320, 22050, 160},
        Case{8000, 128, 8000, 64}, Case{96000, 192, 48000, 192}, Case{88200, 192, 44100, 192},
        Case{50000, 64, 48000, 64}, Case{37800, 64, 44100, 64}, Case{4000, 8, 8000, 8}}) {
    const auto stream = mp3StreamFor(1, c.rate, c.wanted);
    ASSERT_TRUE(stream);
    EXPECT_EQ(stream->storedRate, c.stored) << c.rate;
    EXPECT_EQ(stream->bitRateKbits, c.kbits) << c.rate;
  }
  EXPECT_FALSE(mp3StreamFor(3, 44100, 128));
  EXPECT_FALSE(mp3StreamFor(2, 44100, 0));
  EXPECT_FALSE(mp3StreamFor(2, 4000000000u, 128));
}

std::unique_ptr<Mp3Encoder> fakeBladeEncoder() {
  SharedLibrary library;
  EXPECT_TRUE(library.open(joinPath(executableFolder(), FAKE_LAME_ENC))) << library.errorText();
  return bladeEncoder(std::move(library));
}

TEST(Mp3Writer, DrivesAnEncoderDll) {
  TemporaryFolder folder;
  const std::string path = folder.file(reinterpret_cast<const char*>(u8"ä.mp3"));
  CWave wave;
  wave.create(32000, 1, 16, 150, kFormatPcm);
  wave.setSample(149, 0, 2.0f);
  SaveOptions options;
  options.bitRateKbits = 192;
  ASSERT_TRUE(saveMp3(nativeFileSystem(), path, wave, options, fakeBladeEncoder).saved);
  const std::string bytes = bytesOf(path);
  ASSERT_EQ(bytes.size(), 331u + 2 * 150 + 4);
  // The kind (256) lies below the header.
  EXPECT_EQ(bytes.substr(0, 28), "HEAD" + u32(1) + u32(331) + u32(32000) + u32(32000) + u32(3) + u32(192));
  EXPECT_EQ(bytes.substr(331 + 2 * 149), u16(32767) + "END!");
}

TEST(Mp3Writer, FailsWithOneMessageAndKeepsTheOldFile) {
  TemporaryFolder folder;
  const std::string path = folder.file("out.mp3");
  writeBytes(path, "old");
  CWave wave;
  wave.create(44100, 2, 16, 44100, kFormatPcm);
  const auto save = [&](FileSystem& files, const Mp3EncoderSource& source) {
    const SaveResult result = saveMp3(files, path, wave, {}, source);
    if (!result.saved) {
      EXPECT_EQ(bytesOf(path), "old");
      EXPECT_EQ(folder.entries(), 1u);
    }
    return result;
  };
  const std::string message = "Unable to export mp3 file. Make sure lame encoder is installed";
  EXPECT_EQ(save(nativeFileSystem(), [] { return std::unique_ptr<Mp3Encoder>(); }).message, message);
  wave.progress = {[](float, void*) { return false; }, nullptr};
  EXPECT_TRUE(save(nativeFileSystem(), fakeBladeEncoder).cancelled);
  wave.progress = {};
  for (int failAt = 0;; ++failAt) {
    FailingFileSystem files(failAt);
    const SaveResult result = save(files, fakeBladeEncoder);
    if (files.operations() <= failAt) break;
    EXPECT_EQ(result.message, message) << failAt;
  }
  EXPECT_TRUE(save(nativeFileSystem(), fakeBladeEncoder).saved);
  wave.create(44100, 3, 16, 100, kFormatPcm);
  writeBytes(path, "old");
  EXPECT_EQ(save(nativeFileSystem(), fakeBladeEncoder).message, message);
}

// What comes back is what went in, behind the header frame and the delays of encoder and decoder.
TEST(Mp3Writer, RoundTripThroughTheInstalledEncoder) {
  if (loadMp3Encoder() == nullptr) GTEST_SKIP() << "no encoder is installed";
  constexpr int32_t kShift = 1152 + 576 + 529;
  for (const int channels : {1, 2}) {
    CWave wave, again;
    wave.create(44100, channels, 16, 44100, kFormatPcm);
    for (int32_t f = 0; f < wave.frames(); ++f) {
      for (int c = 0; c < channels; ++c) {
        wave.setSample(f, c, 0.5f * std::sin(0.05f * static_cast<float>((c + 1) * (f % 8796))));
      }
    }
    // On a disk: an encoder may write the header frame into the file by its own means.
    const TemporaryFolder folder;
    const std::string path = folder.file("a.mp3");
    ASSERT_TRUE(saveMp3(nativeFileSystem(), path, wave, {}).saved);
    const size_t tag = channels == 1 ? 21 : 36;
    EXPECT_EQ(bytesOf(path).substr(tag, 4), "Info");
    ASSERT_EQ(loadMp3(nativeFileSystem(), path, again).status, LoadStatus::loaded);
    ASSERT_EQ(again.channels(), channels);
    ASSERT_GE(again.frames(), wave.frames() + kShift);
    for (int32_t f = 3000; f < 8000; ++f) {
      for (int c = 0; c < channels; ++c) {
        ASSERT_NEAR(again.sample(f + kShift, c), wave.sample(f, c), 0.05) << f;
      }
    }
  }
}

}  // namespace
}  // namespace plumetta
