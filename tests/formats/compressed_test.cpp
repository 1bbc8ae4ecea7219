// SPDX-License-Identifier: GPL-3.0-or-later
// Ogg Vorbis and WavPack files through the system's libraries.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "formats/format.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

std::string corpusBytes(const std::string& name) {
  const std::string bytes = bytesOf(std::string(PLUMETTA_CORPUS) + "/" + name);
  EXPECT_FALSE(bytes.empty()) << name;
  return bytes;
}

class Compressed : public testing::Test {
 protected:
  LoadResult load(const std::string& name, const std::string& bytes) {
    const std::string path = folder_.file(name);
    writeBytes(path, bytes);
    const Format* format = formatOfContent(nativeFileSystem(), path);
    if (format == nullptr) return LoadResult::failure("unknown");
    return format->read(nativeFileSystem(), path, {}, wave_);
  }
  LoadResult loadSound(const std::string& corpusName) {
    LoadResult result = load(fileName(corpusName), corpusBytes(corpusName));
    EXPECT_EQ(result.status, LoadStatus::loaded) << corpusName << ": " << result.reason;
    return result;
  }
  static std::string fileName(const std::string& corpusName) {
    return corpusName.substr(corpusName.find('/') + 1);
  }

  TemporaryFolder folder_;
  CWave wave_;
};

TEST_F(Compressed, EveryWavpackWidthHasItsScale) {
  struct Case {
    const char* file;
    int bits;
    int tag;
    std::vector<double> values;
  };
  // Smallest value, one step below zero, zero, one above, largest, a hundred steps.
  const std::vector<Case> cases{
      {"w8", 8, 1, {-1, -1 / 128.0, 0, 1 / 128.0, 127 / 128.0, 100 / 128.0}},
      {"w12", 16, 1, {-32768 / 32767.5, -16 / 32767.5, 0, 16 / 32767.5, 32752 / 32767.5, 1600 / 32767.5}},
      {"w16", 16, 1, {-32768 / 32767.5, -1 / 32767.5, 0, 1 / 32767.5, 32767 / 32767.5, 100 / 32767.5}},
      {"w20",
       24,
       1,
       {-32768 / 32767.5, -16 / 8388480.0, 0, 16 / 8388480.0, 8388592 / 8388480.0, 1600 / 8388480.0}},
      {"w24",
       24,
       1,
       {-32768 / 32767.5, -1 / 8388480.0, 0, 1 / 8388480.0, 8388607 / 8388480.0, 100 / 8388480.0}},
      {"w32", 32, 1, {-1, -0x1p-31, 0, 0x1p-31, 1, 100 * 0x1p-31}},
      {"wf", 32, 3, {-1, -0.5, 0, 0.25, 1, 1.5}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    loadSound("wavpack_reader/" + std::string(c.file) + ".wv");
    ASSERT_EQ(wave_.frames(), 6);
    EXPECT_EQ(wave_.bitsPerSample(), c.bits);
    EXPECT_EQ(wave_.formatTag(), c.tag);
    EXPECT_EQ(wave_.sampleRate(), 8000u);
    for (int i = 0; i < 6; ++i) {
      EXPECT_FLOAT_EQ(wave_.sample(i, 0), static_cast<float>(c.values[static_cast<size_t>(i)])) << i;
    }
  }
}

TEST_F(Compressed, WavpackChannelsStayApartOverBlocks) {
  loadSound("wavpack_reader/stereo.wv");  // 700 frames, more than a block of 512
  ASSERT_EQ(wave_.frames(), 700);
  ASSERT_EQ(wave_.channels(), 2);
  EXPECT_EQ(wave_.sampleRate(), 48000u);
  for (int f = 0; f < 700; ++f) {
    ASSERT_EQ(wave_.sample(f, 0), static_cast<float>(f) / 32767.5f);
    ASSERT_EQ(wave_.sample(f, 1), -wave_.sample(f, 0));
  }
}

TEST_F(Compressed, VorbisSamplesAre16BitWordsOfTheirScale) {
  loadSound("vorbis_reader/tone.ogg");
  ASSERT_EQ(wave_.frames(), 4000);
  EXPECT_EQ(wave_.bitsPerSample(), 16);
  double worst = 0;
  for (int f = 0; f < 4000; ++f) {
    const double word = wave_.sample(f, 0) * 32767.5;
    ASSERT_NEAR(word, std::round(word), 0.01);
    worst = std::max(worst, std::abs(word - 16000 * std::sin(f * 2 * std::numbers::pi * 440 / 8000)));
  }
  EXPECT_LT(worst, 1600);  // the codec keeps a tenth, at the worst place
  loadSound("vorbis_reader/stereo.ogg");
  EXPECT_EQ(wave_.frames(), 1500);
  EXPECT_EQ(wave_.channels(), 2);
  EXPECT_EQ(wave_.sampleRate(), 11025u);
}

TEST_F(Compressed, ChainedVorbisGoesOnInTheSameFormatAndEndsWhereItChanges) {
  const std::string tone = corpusBytes("vorbis_reader/tone.ogg");
  EXPECT_TRUE(load("same.ogg", tone + corpusBytes("vorbis_reader/tone_again.ogg")).warnings.empty());
  EXPECT_EQ(wave_.frames(), 8000);
  const auto result = load("other.ogg", tone + corpusBytes("vorbis_reader/stereo.ogg"));
  EXPECT_EQ(result.status, LoadStatus::loaded);
  EXPECT_EQ(result.warnings.size(), 1u);
  EXPECT_EQ(wave_.frames(), 4000);
  EXPECT_EQ(wave_.channels(), 1);
}

TEST_F(Compressed, DamageCostsNoMoreThanItselfAndIsTold) {
  const std::string tone = corpusBytes("vorbis_reader/tone.ogg");
  std::string hole = tone;
  hole[2850] ^= 1;  // in one of the nine pages of audio, which fails its check sum
  EXPECT_EQ(load("hole.ogg", hole).warnings.size(), 1u);
  EXPECT_GT(wave_.frames(), 4000 * 7 / 9);
  EXPECT_LT(wave_.frames(), 4000);
  const std::string wavpack = corpusBytes("wavpack_reader/stereo.wv");
  std::string flipped = wavpack;
  flipped[wavpack.size() / 2] ^= 1;
  EXPECT_EQ(load("damaged.wv", flipped).status, LoadStatus::failed);  // it has one block
  EXPECT_EQ(load("cut.wv", wavpack.substr(0, 40)).status, LoadStatus::failed);
  EXPECT_EQ(load("cut.ogg", tone.substr(0, 60)).status, LoadStatus::failed);
}

TEST_F(Compressed, TextInformationIsTold) {
  EXPECT_EQ(loadSound("wavpack_reader/tagged.wv").textKinds, std::vector<std::string>{"APEv2"});
  EXPECT_TRUE(loadSound("wavpack_reader/w16.wv").textKinds.empty());
  EXPECT_EQ(loadSound("vorbis_reader/tone.ogg").textKinds, std::vector<std::string>{"Vorbis comment"});
}

TEST_F(Compressed, LoadingStopsWhenAskedTo) {
  wave_.progress.callback = [](float, void*) { return false; };
  for (const char* name : {"vorbis_reader/tone.ogg", "wavpack_reader/stereo.wv"}) {
    EXPECT_EQ(load(fileName(name), corpusBytes(name)).status, LoadStatus::cancelled);
  }
}

}  // namespace
}  // namespace plumetta
