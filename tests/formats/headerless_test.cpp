// SPDX-License-Identifier: GPL-3.0-or-later
// Formats with little or no header: raw samples, VOX, samples of the S1000.
#include <gtest/gtest.h>

#include <cmath>

#include "formats/dialogic_adpcm.h"
#include "formats/raw_file.h"
#include "formats/s1000_file.h"
#include "formats/vox_file.h"
#include "support/memory_file_system.h"
#include "support/wav_bytes.h"

namespace plumetta {
namespace {

class Headerless : public testing::Test {
 protected:
  LoadResult load(const std::string& name, const std::string& bytes, const OpenOptions& options = {}) {
    files_.contents[name] = bytes;
    const Format* format = options.raw ? &rawFormat() : formatOfContent(files_, name);
    return format == nullptr ? LoadResult::failure("unknown") : format->read(files_, name, options, wave_);
  }

  MemoryFileSystem files_;
  CWave wave_;
};

TEST_F(Headerless, RawLayoutsReadTheirSamples) {
  struct Case {
    int bits;
    ByteOrder order;
    RawSign sign;
    std::string bytes;
    float value;
  };
  const std::vector<Case> cases{
      {8, ByteOrder::little, RawSign::isSigned, "\x81", -127 / 127.5f},
      {8, ByteOrder::little, RawSign::isUnsigned, "\xFF", 1},
      {16, ByteOrder::little, RawSign::isSigned, "\xFF\x7F", 1},
      {16, ByteOrder::big, RawSign::isSigned, "\x7F\xFF", 1},
      {16, ByteOrder::big, RawSign::isUnsigned, "\xFF\xFF", 1},
      {24, ByteOrder::big, RawSign::isSigned, std::string("\xC0\0\0", 3), -0.5f},
      {32, ByteOrder::little, RawSign::isSigned, std::string("\0\0\0\x40", 4), 0.5f},
      {32, ByteOrder::big, RawSign::isFloat, std::string("\x3E\x80\0\0", 4), 0.25f},
      {64, ByteOrder::big, RawSign::isSigned, std::string("\x3F\xF0\0\0\0\0\0\0", 8), 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.bits);
    OpenOptions options;
    options.raw = RawLayout{11025, 2, *rawSampleFormat(c.bits, c.order, c.sign), 3};
    // Three bytes ahead, two frames, and a rest that is no frame.
    EXPECT_EQ(load("x.dat", "abc" + c.bytes + c.bytes + c.bytes + c.bytes + c.bytes, options).status,
              LoadStatus::loaded);
    ASSERT_EQ(wave_.frames(), 2);
    EXPECT_EQ(wave_.sampleRate(), 11025u);
    EXPECT_EQ(wave_.bitsPerSample(), c.bits);
    for (size_t i = 0; i < 4; ++i) EXPECT_FLOAT_EQ(wave_.samples()[i], c.value);
  }
  EXPECT_FALSE(rawSampleFormat(24, ByteOrder::little, RawSign::isUnsigned));
  EXPECT_FALSE(rawSampleFormat(16, ByteOrder::little, RawSign::isFloat));
  EXPECT_FALSE(rawSampleFormat(12, ByteOrder::little, RawSign::isSigned));
}

TEST_F(Headerless, OneLayoutAfterAnotherIsTriedOnTheOpenFile) {
  files_.contents["x.dat"] = std::string(4096, 'a');
  std::error_code error;
  const auto file = files_.openForReading("x.dat", error);
  for (const int channels : {1, 2, 4}) {
    ASSERT_EQ(readRaw(*file, {44100, channels, {}, 0}, 100000, wave_).status, LoadStatus::loaded);
    EXPECT_EQ(wave_.frames(), 2048 / channels);
  }
}

TEST_F(Headerless, RawIsTakenByNameOrOnDemandAlone) {
  EXPECT_EQ(load("x.pcm", "abcd").status, LoadStatus::loaded);
  EXPECT_EQ(wave_.frames(), 2);
  EXPECT_EQ(load("x.dat", "abcd").reason, "unknown");
  load("x.raw", plainWav("ab"));
  EXPECT_EQ(wave_.frames(), 1);  // the content knows better
  OpenOptions options;
  options.raw = RawLayout{};
  load("x.wav", plainWav("ab"), options);
  EXPECT_EQ(wave_.frames(), 23);
  options.raw->fileOffset = 47;
  EXPECT_EQ(load("x.wav", plainWav("ab"), options).status, LoadStatus::failed);
}

TEST_F(Headerless, SavedRawOpensAsItself) {
  for (const auto& [bits, tag] : {std::pair{8, 1}, {16, 1}, {24, 1}, {32, 1}, {32, 3}, {64, 3}}) {
    CWave saved;
    saved.create(8000, 2, bits, 3, static_cast<uint16_t>(tag));
    saved.setSample(1, 0, -0.5f);
    saved.setSample(2, 1, 0.25f);
    ASSERT_TRUE(saveRaw(files_, "out.raw", saved, {}).saved);
    OpenOptions options;
    const auto sign = tag == 3 ? RawSign::isFloat : RawSign::isSigned;
    options.raw = RawLayout{8000, 2, *rawSampleFormat(bits, ByteOrder::little, sign), 0};
    ASSERT_EQ(load("out.raw", std::string(files_.contents["out.raw"]), options).status, LoadStatus::loaded);
    ASSERT_EQ(wave_.frames(), 3);
    EXPECT_NEAR(wave_.sample(1, 0), -0.5, 0.005);
    EXPECT_NEAR(wave_.sample(2, 1), 0.25, 0.005);
    EXPECT_EQ(wave_.sample(0, 0), 0.0f);
  }
}

TEST_F(Headerless, VoxIsDecodedAndWrittenAgain) {
  CWave tone;
  tone.create(8000, 1, 16, 4001, kFormatPcm);
  for (int f = 0; f < 4001; ++f) tone.setSample(f, 0, 0.5f * std::sin(0.2f * static_cast<float>(f)));
  ASSERT_TRUE(saveVox(files_, "tone.vox", tone, {}).saved);
  EXPECT_EQ(files_.contents["tone.vox"].size(), 2001u);
  ASSERT_EQ(load("tone.vox", std::string(files_.contents["tone.vox"])).status, LoadStatus::loaded);
  ASSERT_EQ(wave_.frames(), 4002);
  EXPECT_EQ(wave_.sampleRate(), 8000u);
  for (int f = 100; f < 4001; ++f) ASSERT_NEAR(wave_.sample(f, 0), tone.sample(f, 0), 0.05) << f;
  tone.monoToStereo();
  EXPECT_FALSE(saveVox(files_, "tone.vox", tone, {}).saved);
}

std::string s1000Bytes(int words, int loopMode) {
  std::string head("\x03\x00\x40", 3);
  head += std::string(12, '\x0B');  // twelve times "A"
  head += std::string("\x80\x01\x00\x00", 4) + static_cast<char>(loopMode) + std::string(6, '\0');
  head += u32(static_cast<uint64_t>(words)) + u32(0) + u32(99);
  head += u32(90) + u16(0) + u32(20) + u16(9999) + std::string(84, '\0');
  head += std::string("\0\0\xFF\xFF", 4) + u16(22050) + std::string(10, '\0');
  for (int i = 0; i < 100; ++i) head += u16(static_cast<uint64_t>(i));
  return head;
}

TEST_F(Headerless, S1000SamplesBringTheirLoopAndNote) {
  ASSERT_EQ(s1000Bytes(100, 0).size(), 350u);
  EXPECT_TRUE(load("a.s", s1000Bytes(100, 0)).warnings.empty());
  ASSERT_EQ(wave_.frames(), 100);
  EXPECT_EQ(wave_.sampleRate(), 22050u);
  EXPECT_FLOAT_EQ(wave_.sample(99, 0), 99 / 32767.0f);
  ASSERT_EQ(wave_.loops.count(), 1);
  EXPECT_EQ(wave_.loops.start(0), 70);  // 20 frames up to the one at which it jumps back
  EXPECT_EQ(wave_.loops.end(0), 89);
  EXPECT_EQ(wave_.loops.header.midiUnityNote, 64u);
  ASSERT_TRUE(saveS1000(files_, "FLUTE.s", wave_, {}).saved);
  EXPECT_EQ(files_.contents["FLUTE.s"].substr(3, 6), "\x10\x16\x1F\x1E\x0F\x0A");
  load("again.s", std::string(files_.contents["FLUTE.s"]));
  EXPECT_EQ(wave_.loops.start(0), 70);
  EXPECT_EQ(wave_.loops.end(0), 89);

  load("a.s", s1000Bytes(100, 2));
  EXPECT_FALSE(wave_.loops.hasLoops());
  EXPECT_EQ(load("a.s", s1000Bytes(1000000, 0)).warnings.size(), 1u);
  EXPECT_EQ(wave_.frames(), 100);
}

}  // namespace
}  // namespace plumetta
