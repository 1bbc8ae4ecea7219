// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/sample_codec.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "formats/dialogic_adpcm.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

SampleFormat little(Encoding encoding, SignType sign = SignType::isSigned) {
  return {encoding, ByteOrder::little, sign};
}

class Codec : public ::testing::Test {
 protected:
  std::string encode(const SampleFormat& format, const std::vector<float>& floats, int channels = 1) {
    const std::string path = folder_.file("raw" + std::to_string(files_++));
    std::error_code error;
    auto file = nativeFileSystem().createNew(path, error);
    OutputStream out(*file);
    encodeSamples(out, format, floats.data(), static_cast<int64_t>(floats.size()) / channels, channels, {});
    EXPECT_FALSE(out.flush());
    file->close();
    return bytesOf(path);
  }

  std::vector<float> decode(const SampleFormat& format, const std::string& bytes, int64_t frames,
                            int channels = 1, const WaveProgress& progress = {}) {
    const std::string path = folder_.file("raw" + std::to_string(files_++));
    writeBytes(path, bytes);
    std::error_code error;
    auto file = nativeFileSystem().openForReading(path, error);
    InputStream in(*file);
    std::vector<float> floats(static_cast<size_t>(frames * channels), -9.0f);
    result_ = decodeSamples(in, format, floats.data(), frames, channels, progress, framesRead_);
    return floats;
  }

  TemporaryFolder folder_;
  int files_ = 0;
  CodecResult result_{};
  int64_t framesRead_ = 0;
};

TEST_F(Codec, KnownValues) {
  struct Case {
    SampleFormat format;
    float value;
    std::string bytes;
    float back;
  };
  using namespace std::string_literals;
  const Case cases[] = {
      {little(Encoding::pcm8, SignType::isUnsigned), 0.0f, "\x80", 0.0f},
      {little(Encoding::pcm8, SignType::isUnsigned), 1.0f, "\xFF", 1.0f},
      {little(Encoding::pcm8, SignType::isUnsigned), -1.0f, "\x01"s, -1.0f},
      {little(Encoding::pcm8, SignType::isUnsigned), kNan, "\x80", 0.0f},
      {little(Encoding::pcm16), 1.0f, "\xFF\x7F", 1.0f},
      {little(Encoding::pcm16), -1.0000305f, "\x01\x80", -1.0f},
      {little(Encoding::pcm16), kInf, "\xFF\x7F", 1.0f},
      {little(Encoding::pcm16), 2.6f / 32767, "\x03\x00"s, static_cast<float>(3 / 32767.0)},
      {{Encoding::pcm16, ByteOrder::big, SignType::isUnsigned}, 0.0f, "\x80\x00"s, 0.0f},
      {{Encoding::pcm16, ByteOrder::big, SignType::isSigned}, 1.0f, "\x7F\xFF", 1.0f},
      {little(Encoding::pcm24), 1.0f, "\xFF\xFF\x7F", 8388607 / 8388608.0f},
      {little(Encoding::pcm24), -1.0f, "\x00\x00\x80"s, -1.0f},
      {{Encoding::pcm24, ByteOrder::big, SignType::isSigned}, 0.5f, "\x40\x00\x00"s, 0.5f},
      {little(Encoding::pcm32), -kInf, "\x01\x00\x00\x80"s, -1.0f},
      {little(Encoding::float32), 1.5f, "\x00\x00\xC0\x3F"s, 1.5f},
      {{Encoding::float64, ByteOrder::big, SignType::isSigned},
       -2.0f,
       "\xC0\x00\x00\x00\x00\x00\x00\x00"s,
       -2.0f},
      {little(Encoding::muLaw), 0.0f, "\xFF", 0.0f},
      {little(Encoding::muLaw), 1.0f, "\x80", 32124 / 32767.0f},
      {little(Encoding::aLaw), 1.0f, "\xAA", 32256 / 32767.0f},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(encode(c.format, {c.value}), c.bytes) << c.value;
    EXPECT_EQ(decode(c.format, c.bytes, 1)[0], c.back) << c.value;
  }
  EXPECT_EQ(decode(little(Encoding::pcm16), "\x00\x80"s, 1)[0], -32768 / 32767.0f);
  EXPECT_EQ(decode(little(Encoding::pcm8), "\x80", 1)[0], -128 / 127.5f);
  EXPECT_TRUE(std::isnan(decode(little(Encoding::float32), encode(little(Encoding::float32), {kNan}), 1)[0]));
}

TEST_F(Codec, EveryStoredValueSurvivesAnyNumberOfGenerations) {
  struct Case {
    SampleFormat format;
    int bytes;
    std::string lowest;  // the one value that is clamped
  };
  using namespace std::string_literals;
  for (const Case& c : {Case{little(Encoding::pcm8, SignType::isUnsigned), 1, "\x00"s},
                        Case{little(Encoding::pcm16), 2, "\x00\x80"s}, Case{little(Encoding::pcm24), 3, ""s},
                        Case{little(Encoding::muLaw), 1, "\x7F"s}, Case{little(Encoding::aLaw), 1, ""s}}) {
    std::string all;
    const int count = c.bytes == 1 ? 256 : 65536;
    std::mt19937 random(7);
    for (int i = 0; i < count; ++i) {
      const uint32_t bits = c.bytes == 3 ? static_cast<uint32_t>(random()) : static_cast<uint32_t>(i);
      std::string value;
      for (int b = 0; b < c.bytes; ++b) value += static_cast<char>(bits >> 8 * b);
      if (value != c.lowest) all += value;
    }
    const auto frames = static_cast<int64_t>(all.size()) / c.bytes;
    EXPECT_EQ(encode(c.format, decode(c.format, all, frames)), all);
  }
}

TEST_F(Codec, BlocksJoinAndShortReadsLeaveTheRest) {
  std::vector<float> floats(3 * 1300);
  for (size_t i = 0; i < floats.size(); ++i) floats[i] = static_cast<float>(i) / 32767;
  const auto format = little(Encoding::pcm16);
  const std::string bytes = encode(format, floats, 3);
  EXPECT_EQ(decode(format, bytes, 1300, 3), floats);
  EXPECT_EQ(result_, CodecResult::done);
  const auto cut = decode(format, bytes.substr(0, 6 * 700 + 3), 1300, 3);
  EXPECT_EQ(result_, CodecResult::shortRead);
  EXPECT_EQ(framesRead_, 700);
  EXPECT_EQ(cut[3 * 700 - 1], floats[3 * 700 - 1]);
  EXPECT_EQ(cut[3 * 700], -9.0f);
}

TEST_F(Codec, ProgressCanStopTheWork) {
  static int calls;
  calls = 0;
  const WaveProgress progress{[](float, void*) { return ++calls < 2; }, nullptr};
  decode(little(Encoding::pcm16), std::string(2 * 2000, 'x'), 2000, 1, progress);
  EXPECT_EQ(result_, CodecResult::cancelled);
  EXPECT_EQ(framesRead_, 1024);
}

TEST_F(Codec, AdpcmDecodesTheHighNibbleFirst) {
  // By hand: step 16, code 7 adds 16 + 8 + 4 + 2 = 30; eight places on (step 34), code 8 subtracts 34 >> 3
  // = 4.
  const auto floats = decode(little(Encoding::adpcm4), "\x78", 2);
  EXPECT_FLOAT_EQ(floats[0], 30 * 16 / 32767.0f);
  EXPECT_FLOAT_EQ(floats[1], 26 * 16 / 32767.0f);
  DialogicAdpcm loud;
  for (int i = 0; i < 50; ++i) loud.decode(7);
  EXPECT_EQ(loud.decode(7), 2047);
  const auto stereo = decode(little(Encoding::adpcm4), "\x70\x70", 2, 2);
  EXPECT_FLOAT_EQ(stereo[0], 30 * 16 / 32767.0f);
  EXPECT_FLOAT_EQ(stereo[1], 2 * 16 / 32767.0f);
}

}  // namespace
}  // namespace plumetta
