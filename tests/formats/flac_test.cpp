// SPDX-License-Identifier: GPL-3.0-or-later
// FLAC of every depth, bare and in Ogg, made by the library's own encoder.
#include <FLAC/stream_encoder.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

#include "formats/format.h"
#include "support/temporary_folder.h"
#include "support/wav_bytes.h"

namespace plumetta {
namespace {

struct FlacBytes {
  std::string bytes;
  std::vector<size_t> frameStarts;  // in them
};

FlacBytes encoded(const std::vector<int32_t>& interleaved, int channels, int bits, bool inOgg = false) {
  const std::unique_ptr<FLAC__StreamEncoder, void (*)(FLAC__StreamEncoder*)> owner(
      FLAC__stream_encoder_new(), FLAC__stream_encoder_delete);
  FLAC__StreamEncoder* encoder = owner.get();
  FLAC__stream_encoder_set_streamable_subset(encoder, false);
  FLAC__stream_encoder_set_channels(encoder, static_cast<uint32_t>(channels));
  FLAC__stream_encoder_set_bits_per_sample(encoder, static_cast<uint32_t>(bits));
  FLAC__stream_encoder_set_blocksize(encoder, 4096);
  const auto frames = static_cast<uint32_t>(interleaved.size()) / static_cast<uint32_t>(channels);
  FLAC__stream_encoder_set_total_samples_estimate(encoder, frames);
  FlacBytes flac;
  const auto write = [](const FLAC__StreamEncoder*, const FLAC__byte* bytes, size_t count, uint32_t samples,
                        uint32_t, void* user) {
    auto& target = *static_cast<FlacBytes*>(user);
    if (samples > 0) target.frameStarts.push_back(target.bytes.size());
    target.bytes.append(reinterpret_cast<const char*>(bytes), count);
    return FLAC__STREAM_ENCODER_WRITE_STATUS_OK;
  };
  const auto opened =
      inOgg ? FLAC__stream_encoder_init_ogg_stream(encoder, nullptr, write, nullptr, nullptr, nullptr, &flac)
            : FLAC__stream_encoder_init_stream(encoder, write, nullptr, nullptr, nullptr, &flac);
  EXPECT_EQ(opened, FLAC__STREAM_ENCODER_INIT_STATUS_OK);
  EXPECT_TRUE(FLAC__stream_encoder_process_interleaved(encoder, interleaved.data(), frames));
  FLAC__stream_encoder_finish(encoder);
  return flac;
}

// What does not get smaller by encoding.
FlacBytes noise(int frames, int bits = 16, bool inOgg = false) {
  std::minstd_rand random(7);
  std::vector<int32_t> samples(static_cast<size_t>(frames));
  for (int32_t& sample : samples) sample = static_cast<int32_t>(random() & 0x3FFF) + 1;
  return encoded(samples, 1, bits, inOgg);
}

// The count of frames that the header tells: 36 bits.
std::string claiming(std::string flac, uint64_t frames) {
  flac[21] = static_cast<char>((flac[21] & 0xF0) | static_cast<char>(frames >> 32));
  for (size_t i = 0; i < 4; ++i) flac[22 + i] = static_cast<char>(frames >> (24 - 8 * i));
  return flac;
}

std::string withComment(const std::string& flac, const std::string& comment) {
  const std::string block = u32(0) + u32(1) + u32(comment.size()) + comment;
  return flac.substr(0, 42) + std::string("\4\0\0", 3) + static_cast<char>(block.size()) + block +
         flac.substr(42);
}

class Flac : public testing::Test {
 protected:
  LoadResult load(const std::string& bytes) {
    const std::string path = folder_.file("a");
    writeBytes(path, bytes);
    const Format* format = formatOfContent(nativeFileSystem(), path);
    return format == nullptr ? LoadResult::failure("unknown")
                             : format->read(nativeFileSystem(), path, {}, wave_);
  }

  TemporaryFolder folder_;
  CWave wave_;
};

TEST_F(Flac, EveryDepthGoesByTheScaleOfItsWholeWidth) {
  struct Case {
    int bits, width;
    double fullScale;
  };
  for (const auto& [bits, width, fullScale] :
       {Case{4, 8, 127.5}, Case{8, 8, 127.5}, Case{12, 16, 32767}, Case{16, 16, 32767}, Case{20, 24, 0x1p23},
        Case{24, 24, 0x1p23}, Case{27, 32, 0x1p31}, Case{32, 32, 0x1p31}}) {
    const auto largest = static_cast<int32_t>((int64_t{1} << (bits - 1)) - 1);
    const std::vector<int32_t> values{-largest - 1, -1, 0, 1, largest, 5, -6, 7, -8, 3, 2, -3};
    for (const int channels : {1, 2, 3}) {
      for (const bool inOgg : {false, true}) {
        SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(channels) + (inOgg ? " in Ogg" : ""));
        const auto result = load(encoded(values, channels, bits, inOgg).bytes);
        ASSERT_EQ(result.status, LoadStatus::loaded) << result.reason;
        EXPECT_TRUE(result.warnings.empty() && result.textKinds.empty());
        EXPECT_EQ(wave_.bitsPerSample(), width);
        EXPECT_EQ(wave_.formatTag(), kFormatPcm);
        ASSERT_EQ(wave_.channels(), channels);
        ASSERT_EQ(wave_.sampleCount(), values.size());
        for (size_t i = 0; i < values.size(); ++i) {
          const double stored = std::ldexp(values[i], width - bits);
          EXPECT_FLOAT_EQ(wave_.samples()[i], static_cast<float>(stored / fullScale)) << i;
        }
      }
    }
  }
}

TEST_F(Flac, LengthIsWhatIsThereAndDamageIsTold) {
  constexpr int kFrames = 100000, kBlock = 4096;
  const auto [whole, starts] = noise(kFrames);
  const std::string ogg = noise(kFrames, 16, true).bytes;
  std::string flipped = whole, flippedPage = ogg;
  flipped[starts[3] + 100] ^= 1;
  flippedPage[ogg.size() / 2] ^= 1;
  const FlacBytes other = noise(2 * kBlock, 20);
  struct Case {
    const char* name;
    std::string bytes;
    int frames;
    size_t warnings;
    int silentBlocks;  // the least
  };
  for (const Case& c : std::vector<Case>{
           {"unknown length", claiming(whole, 0), kFrames, 0, 0},
           {"more than told", claiming(whole, 500), kFrames, 0, 0},
           {"less than told", claiming(whole, kFrames + 1), kFrames, 1, 0},
           {"tag behind", whole + "TAG" + std::string(125, ' '), kFrames, 0, 0},
           {"flipped bit", flipped, kFrames, 1, 1},
           {"lost frame", whole.substr(0, starts[3]) + whole.substr(starts[4]), kFrames, 1, 1},
           {"lost page", flippedPage, kFrames, 1, 2},
           {"frame of another depth",
            whole.substr(0, starts[3]) + other.bytes.substr(other.frameStarts[1]) + whole.substr(starts[3]),
            kFrames, 1, 0},
           {"header alone", claiming(whole.substr(0, starts[0]), 1), 0, 1, 0}}) {
    SCOPED_TRACE(c.name);
    const auto result = load(c.bytes);
    ASSERT_EQ(result.status, LoadStatus::loaded) << result.reason;
    EXPECT_EQ(wave_.frames(), c.frames);
    EXPECT_EQ(result.warnings.size(), c.warnings);
    const auto silent = std::count(wave_.samples(), wave_.samples() + wave_.sampleCount(), 0.0f);
    EXPECT_EQ(silent > 0, c.silentBlocks > 0);
    EXPECT_GE(silent, c.silentBlocks * kBlock);
  }
  EXPECT_EQ(load(claiming(whole, uint64_t{1} << 35)).status, LoadStatus::failed);
  EXPECT_EQ(load(whole.substr(0, 20)).status, LoadStatus::failed);
  EXPECT_EQ(load(ogg.substr(0, 50)).status, LoadStatus::failed);
}

TEST_F(Flac, TextOfAPersonIsToldAndWhatTheEncoderNotesIsNot) {
  const std::string flac = noise(10).bytes;
  EXPECT_EQ(load(withComment(flac, "Mood=glad")).textKinds, std::vector<std::string>{"Vorbis comments"});
  for (const char* comment : {"encoder=some program", "TITLE=", ""}) {
    EXPECT_TRUE(load(withComment(flac, comment)).textKinds.empty()) << comment;
    EXPECT_EQ(wave_.frames(), 10);
  }
}

}  // namespace
}  // namespace plumetta
