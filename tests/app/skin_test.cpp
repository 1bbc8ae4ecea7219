// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/skin.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "app/skin_files.h"
#include "platform/paths.h"
#include "support/temporary_folder.h"

namespace plumetta {
namespace {

constexpr Rgb kBlack{0, 0, 0}, kWhite{255, 255, 255};

SkinReading read(const std::string& bytes) {
  const TemporaryFolder folder;
  writeBytes(folder.file("a.skin"), bytes);
  return readSkin(nativeFileSystem(), folder.file("a.skin"));
}

TEST(Skin, ColoursAreReadAsPeopleWriteThem) {
  const struct {
    const char* text;
    std::optional<Rgb> colour;
  } cases[] = {{"#0A14ff", Rgb{10, 20, 255}},
               {"10,20,255", Rgb{10, 20, 255}},
               {" 10 , 20,  255", Rgb{10, 20, 255}},
               {"#0A14F", {}},
               {"#0A14FF0", {}},
               {"#-1-2-3", {}},
               {"10,20", {}},
               {"10,20,30,40", {}},
               {"10,20,256", {}},
               {"10,,30", {}},
               {"-1,2,3", {}},
               {"red", {}},
               {"", {}},
               {"#", {}},
               {",,", {}}};
  for (const auto& [text, colour] : cases) EXPECT_EQ(parseColour(text), colour) << '"' << text << '"';
}

TEST(Skin, FileGivesWhatIsGoodInItAndNamesTheRest) {
  const SkinReading reading =
      read("[colors]\nlane=\"#010203\"\nMargin=1,2\nUnknown=#FFFFFF\n[Else]\nText=#000000\n");
  EXPECT_TRUE(reading.isSkin);
  EXPECT_EQ(reading.skin[Tint::lane], (Rgb{1, 2, 3}));
  EXPECT_FALSE(reading.skin[Tint::margin]);
  EXPECT_FALSE(reading.skin[Tint::text]);
  ASSERT_EQ(reading.problems.size(), 1u);
  EXPECT_EQ(reading.problems[0], "Margin is no colour: \"1,2\".");
  for (const std::string& bytes :
       {std::string(), std::string("RIFF\0\1\2WAVE", 11), std::string("[Colors]\n")}) {
    EXPECT_FALSE(read(bytes).isSkin) << bytes;
    EXPECT_FALSE(read(bytes).problems.empty()) << bytes;
  }
  EXPECT_LT(read("[Colors]\nLane=" + std::string(50000, 'x') + "\n").problems[0].size(), 100u);
}

TEST(Skin, WhatIsNotGivenSuitsItsGround) {
  const Skin nothing;
  EXPECT_EQ(Palette(nothing, false)[Tint::lane], kWhite);
  EXPECT_TRUE(Palette(nothing, true).dark());
  for (const Tint ground : {Tint::lane, Tint::margin}) {
    for (const bool system : {false, true}) {
      Skin skin;
      skin[ground] = kBlack;
      const Palette onBlack(skin, system);
      EXPECT_TRUE(onBlack.dark());
      EXPECT_GE(contrast(onBlack[Tint::cursor], onBlack[Tint::lane]), 4.5);
      skin[ground] = kWhite;
      EXPECT_GE(contrast(Palette(skin, system)[Tint::cursor], Palette(skin, system)[Tint::lane]), 4.5);
    }
  }
  // Whatever is behind it, text can be read.
  for (int level = 0; level < 256; level += 5) {
    const auto part = static_cast<uint8_t>(level);
    Skin skin;
    skin[Tint::margin] = skin[Tint::marker] = Rgb{part, part, part};
    for (const Tint tint : {Tint::text, Tint::markerText}) {
      const Palette palette(skin, level % 2 != 0);
      EXPECT_GE(contrast(palette[tint], *skin[Tint::margin]), 3.0) << level;
    }
    EXPECT_TRUE(unreadableTexts(skin, false).empty());
  }
  Skin mixed;
  mixed[Tint::margin] = kWhite;
  mixed[Tint::lane] = kBlack;
  EXPECT_GE(contrast(Palette(mixed, false)[Tint::rmsSelected], Palette(mixed, false)[Tint::laneSelected]),
            4.5);
  mixed[Tint::text] = Rgb{250, 250, 250};
  EXPECT_EQ(unreadableTexts(mixed, false).size(), 1u);
}

TEST(Skin, WrittenAndReadIsTheSameAndKeepsOtherLines) {
  const TemporaryFolder folder;
  const std::string path = folder.file("own.skin");
  writeBytes(path, "; mine\r\n[Colors]\r\nStrange=#123456\r\nLane=#FFFFFF\r\n");
  Skin skin;
  skin[Tint::envelope] = Rgb{1, 200, 3};
  const Palette palette(skin, true);
  ASSERT_TRUE(writeSkin(path, palette));
  const SkinReading reading = readSkin(nativeFileSystem(), path);
  EXPECT_TRUE(reading.problems.empty());
  EXPECT_EQ(reading.skin, palette.asSkin());
  EXPECT_NE(bytesOf(path).find("Strange=#123456"), std::string::npos);
  EXPECT_FALSE(writeSkin(joinPath(folder.file("missing"), "a.skin"), palette));
}

TEST(Skin, TheNamedFileGoesBeforeTheOwnOne) {
  const TemporaryFolder home;
  const auto chosen = [&](const std::string& setting) {
    return chosenSkinPath(nativeFileSystem(), home.path(), setting);
  };
  EXPECT_EQ(chosen("c:\\"), "");
  writeBytes(home.file("plumetta.skin"), "");
  EXPECT_EQ(chosen("c:\\"), home.file("plumetta.skin"));
  EXPECT_EQ(chosen(home.path()), home.file("plumetta.skin"));
  writeBytes(home.file("Dusk.SKIN"), "");
  writeBytes(home.file("notes.txt"), "");
  EXPECT_EQ(chosen(home.file("Dusk.SKIN")), home.file("Dusk.SKIN"));
  const auto listed = [&](const std::string& name) {
    const std::vector<SkinFile> skins = skinFiles(nativeFileSystem(), home.path());
    return std::ranges::count(skins, name, &SkinFile::name);
  };
  EXPECT_EQ(listed("Dusk"), 1);
  EXPECT_EQ(listed("plumetta"), 0);
}

TEST(Skin, ShippedOnesGiveEveryColourAndCanBeRead) {
  size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(PLUMETTA_SKINS)) {
    ++count;
    const SkinReading reading = readSkin(nativeFileSystem(), entry.path().string());
    EXPECT_TRUE(reading.problems.empty()) << entry.path();
    EXPECT_EQ(Palette(reading.skin, false).asSkin(), reading.skin) << entry.path();
    const Palette palette(reading.skin, false);
    for (size_t i = 0; i < kTints; ++i) {
      const TintRow& row = tintRow(static_cast<Tint>(i));
      const double seen = contrast(palette[static_cast<Tint>(i)], palette[row.ground]);
      EXPECT_TRUE(!row.isText || seen >= 4.5) << entry.path() << row.key;
    }
  }
  EXPECT_GE(count, 3u);
}

}  // namespace
}  // namespace plumetta
