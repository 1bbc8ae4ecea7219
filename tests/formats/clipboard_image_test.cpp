// SPDX-License-Identifier: GPL-3.0-or-later
// Audio on the system clipboard: the image byte by byte, and images of other programs.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "formats/clipboard_image.h"
#include "support/wav_bytes.h"

namespace plumetta {
namespace {

using namespace std::string_literals;

std::string imageOf(const CWave& wave, int32_t frames) {
  // Whatever the buffer held shows where something was left out.
  std::string image(clipboardImageBytes(wave, frames), '\xEE');
  writeClipboardImage(wave, frames, reinterpret_cast<uint8_t*>(image.data()));
  return image;
}

std::unique_ptr<CWave> waveOf(int channels, int bits, uint16_t tag, const std::vector<float>& samples) {
  auto wave = std::make_unique<CWave>();
  wave->create(8000, channels, bits, static_cast<int64_t>(samples.size()) / channels, kFormatPcm);
  wave->setFormatTag(tag);
  std::copy(samples.begin(), samples.end(), wave->samples());
  return wave;
}

// The 48 bytes of 2 channels at 8000 Hz.
std::string header(int tag, int bits, unsigned dataBytes) {
  const auto align = static_cast<uint64_t>(bits / 4);
  return "RIFF" + u32(dataBytes + 40) + "WAVEfmt " + u32(20) + u16(static_cast<uint64_t>(tag)) + u16(2) +
         u32(8000) + u32(align * 8000) + u16(align) + u16(static_cast<uint64_t>(bits)) + "\0\0\0\0"s +
         "data" + u32(dataBytes);
}

TEST(ClipboardImage, IsExactInEveryFormat) {
  // Four of the six samples are exported: two frames of three.
  const std::vector<float> samples{0.5f, -0.5f, 1.0f, -1.0f, 0.25f, 0.25f};
  const struct {
    int bits;
    uint16_t tag;
    int writtenTag;
    std::string data;
  } cases[] = {// 63.5 + 128.5 = 192; -63.5 + 128.5 = 65; 255.5; 1.5
               {8, kFormatPcm, 1, "\xC0\x41\xFF\x01"s},
               // 16383.5 and -16383.5 lose their halves: 0x3FFF and -0x3FFF
               {16, kFormatPcm, 1, "\xFF\x3F\x01\xC0\xFF\x7F\x01\x80"s},
               // 1073741823.5 is 0x3FFFFFFF, its opposite 0xC0000001
               {24, kFormatPcm, 1, "\xFF\xFF\x3F\x00\x00\xC0\xFF\xFF\x7F\x00\x00\x80"s},
               {32, kFormatPcm, 1, "\xFF\xFF\xFF\x3F\x01\x00\x00\xC0\xFF\xFF\xFF\x7F\x01\x00\x00\x80"s},
               {32, kFormatFloat, 3, "\0\0\0\x3F\0\0\0\xBF\0\0\x80\x3F\0\0\x80\xBF"s},
               {64, kFormatFloat, 3,
                "\0\0\0\0\0\0\xE0\x3F\0\0\0\0\0\0\xE0\xBF\0\0\0\0\0\0\xF0\x3F\0\0\0\0\0\0\xF0\xBF"s},
               // A tag that these bits never have is not claimed.
               {8, kFormatMuLaw, 1, "\xC0\x41\xFF\x01"s},
               {64, kFormatPcm, 3,
                "\0\0\0\0\0\0\xE0\x3F\0\0\0\0\0\0\xE0\xBF\0\0\0\0\0\0\xF0\x3F\0\0\0\0\0\0\xF0\xBF"s}};
  for (const auto& [bits, tag, writtenTag, data] : cases) {
    const auto wave = waveOf(2, bits, tag, samples);
    const auto bytes = static_cast<unsigned>(data.size());
    EXPECT_EQ(imageOf(*wave, 2), header(writtenTag, bits, bytes) + data) << bits << " bits, tag " << tag;
  }
}

TEST(ClipboardImage, HoldsSamplesWithinFullScale) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const auto bytes = waveOf(2, 8, kFormatPcm, {9.0f, -9.0f, nan, 0.0f});
  EXPECT_EQ(imageOf(*bytes, 2).substr(48), "\xFF\x00\x00\x80"s);
  const auto words = waveOf(2, 16, kFormatPcm, {9.0f, -9.0f, nan, INFINITY});
  EXPECT_EQ(imageOf(*words, 2).substr(48), "\xFF\x7F\x00\x80\x00\x00\xFF\x7F"s);
}

TEST(ClipboardImage, MayBeEmptyAndIsNeverBeyondWhatAClipboardTakes) {
  const auto wave = waveOf(2, 16, kFormatPcm, {0.0f, 0.0f});
  EXPECT_EQ(imageOf(*wave, 0), header(1, 16, 0));
  EXPECT_EQ(clipboardImageBytes(*wave, 536870899), 2147483644u);  // 4 bytes a frame
  EXPECT_EQ(clipboardImageBytes(*wave, 536870900), 0u);
}

TEST(ClipboardImage, ComesBackAsItWas) {
  for (const int bits : {8, 16, 24, 32, 64}) {
    const auto wave = waveOf(2, bits, bits >= 32 ? kFormatFloat : kFormatPcm, {0.5f, -0.25f, 0.125f, 0.0f});
    CWave back;
    EXPECT_EQ(readClipboardImage(imageOf(*wave, 2), back).status, LoadStatus::loaded);
    EXPECT_EQ(back.channels(), 2);
    EXPECT_EQ(back.frames(), 2);
    EXPECT_EQ(back.bitsPerSample(), bits);
    EXPECT_EQ(back.sampleRate(), 8000u);
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(back.samples()[i], wave->samples()[i], 2.0 / 255) << bits;
  }
}

TEST(ClipboardImage, OfOtherProgramsIsReadSafely) {
  const std::string plain = plainWav("\x00\x40\x00\xC0"s);
  const std::string extensible = riff(chunk("fmt ", extensibleBody(1, 1, 8000, 16)) + chunk("LIST", "abc") +
                                      chunk("data", "\x00\x40\x00\xC0"s));
  for (const std::string& image : {plain, extensible, plain + "trailing"}) {
    CWave wave;
    EXPECT_EQ(readClipboardImage(image, wave).status, LoadStatus::loaded);
    ASSERT_EQ(wave.frames(), 2);
    EXPECT_NEAR(wave.sample(0, 0), 0.5, 1e-4);
    EXPECT_NEAR(wave.sample(1, 0), -0.5, 1e-4);
  }
  // Whatever is cut off, no byte beyond the end is looked at, and a loaded buffer holds what was there.
  for (size_t size = 0; size < plain.size(); ++size) {
    CWave wave;
    const std::string cut = plain.substr(0, size);
    const auto result = readClipboardImage({cut.data(), cut.size()}, wave);
    if (result.status == LoadStatus::loaded) {
      EXPECT_LE(wave.frames(), 1) << size;
    }
  }
  CWave wave;
  for (const std::string& image :
       {"no audio at all"s, "RIFF\0\0\0\0AVI LIST"s, riff(chunk("data", "\0\0"s))}) {
    EXPECT_EQ(readClipboardImage(image, wave).status, LoadStatus::failed) << image;
  }
  // Sizes that lie.
  const std::string lying = riff(chunk("fmt ", formatBody(1, 1, 8000, 16), 0xFFFFFFFF));
  EXPECT_EQ(readClipboardImage(lying, wave).status, LoadStatus::loaded);
  EXPECT_EQ(wave.frames(), 0);
}

}  // namespace
}  // namespace plumetta
