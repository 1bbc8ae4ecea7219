// SPDX-License-Identifier: GPL-3.0-or-later
// What the window computes without a display: numbers as people type them, filters, the list of recent files.
#include <gtest/gtest.h>
#include <wx/accel.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "app/key_press.h"
#include "platform/file_system.h"
#include "platform/private_profile.h"
#include "support/loose_document.h"
#include "support/recording_prompter.h"
#include "support/temporary_folder.h"
#include "ui/dock_layout.h"
#include "ui/file_filters.h"
#include "ui/file_stamps.h"
#include "ui/level_colours.h"
#include "ui/number_text.h"
#include "ui/recent_files.h"
#include "ui/statistics_dialog.h"
#include "ui/text.h"
#include "ui/transport_bar.h"

namespace plumetta {
namespace {

// What the toolkit knows of every key that a file may name.
TEST(Keys, ToolkitKnowsThemAllAndCallsThemTheSame) {
  std::vector<std::string> names{"Ctrl++", "Ctrl+Shift+T", "Alt+,", "F1", "F24", "Space", "KP_9", "\""};
  for (const char* name :
       {"Esc",    "Tab",         "Enter",       "Back",      "Delete",     "Insert",   "Home",
        "End",    "PageUp",      "PageDown",    "Left",      "Right",      "Up",       "Down",
        "KP_Add", "KP_Subtract", "KP_Multiply", "KP_Divide", "KP_Decimal", "KP_Enter", "KP_0"}) {
    names.emplace_back(name);
  }
  for (const std::string& name : names) {
    wxAcceleratorEntry entry;
    ASSERT_TRUE(entry.FromString(toWx(name))) << name;
    const auto press = parseKeyPress(fromWx(entry.ToRawString()));
    EXPECT_EQ(press ? keyPressText(*press) : "none", name) << entry.ToRawString();
  }
}

TEST(NumberText, TakesWhatPeopleTypeAndRefusesTheRest) {
  const struct {
    const char* typed;
    std::optional<double> value;
  } cases[] = {{"1.5", 1.5}, {" 1,5\t", 1.5}, {"+3", 3.0},   {"-0.25", -0.25}, {"1e3", 1000.0},
               {"", {}},     {"  ", {}},      {"abc", {}},   {"1.5x", {}},     {"1 000", {}},
               {"nan", {}},  {"inf", {}},     {"1.5.5", {}}, {"1e999", {}}};
  for (const auto& [typed, value] : cases) EXPECT_EQ(parseNumber(typed), value) << '"' << typed << '"';
}

TEST(NumberText, WritesPlainDigitsThatReadBack) {
  EXPECT_EQ(numberText(100000), "100000");
  EXPECT_EQ(numberText(0.1), "0.1");
  EXPECT_EQ(numberText(-2.5), "-2.5");
  for (const double value : {1.0 / 3, 1e-9, 1e300, 4294967295.0}) {
    EXPECT_EQ(parseNumber(numberText(value)), value);
  }
}

TEST(FileFilters, AreReadOffTheFormats) {
  const auto probe = [](const FileHead&) { return Likeness::none; };
  const auto read = [](FileSystem&, const std::string&, const OpenOptions&, CWave&) { return LoadResult{}; };
  const auto write = [](FileSystem&, const std::string&, const CWave&, const SaveOptions&) {
    return SaveResult{};
  };
  const std::vector<Format> formats{{"Alpha", {"a", "al"}, probe, read, write, nullptr},
                                    {"Beta", {"b"}, probe, read, nullptr, nullptr},
                                    {"Gamma", {"g"}, probe, nullptr, write, nullptr}};
  EXPECT_EQ(openFilter(formats),
            "All known media files|*.a;*.A;*.al;*.AL;*.b;*.B|Alpha (*.a, *.al)|*.a;*.A;*.al;*.AL|"
            "Beta (*.b)|*.b;*.B|All files|*");
  const auto writable = writableFormats(formats);
  EXPECT_EQ(saveFilter(writable), "Alpha (*.a, *.al)|*.a;*.A;*.al;*.AL|Gamma (*.g)|*.g;*.G");
  EXPECT_EQ(filterIndexOf(writable, "x.G"), 1);
  EXPECT_EQ(filterIndexOf(writable, "x.b"), 0);
}

TEST(LevelColours, DifferByEvenStepsOfLightnessFromTheGround) {
  for (const bool dark : {false, true}) {
    const Palette palette({}, dark);
    const LevelColours colours = levelColours(Theme(palette));
    EXPECT_EQ(colours[0], palette[Tint::lane]);
    const double first = perceivedLightness(colours.front()), last = perceivedLightness(colours.back());
    EXPECT_GT(dark ? last - first : first - last, 0.7);
    for (size_t i = 0; i < colours.size(); ++i) {
      const double share = static_cast<double>(i) / 255;
      EXPECT_NEAR(perceivedLightness(colours[i]), first + share * (last - first), 0.02) << i;
    }
  }
}

TEST(StatisticsReport, StandsInColumns) {
  EXPECT_EQ(
      alignedReport("Head:\r\n\tRMS power :\t\t1.00%\t(-40.00 dB)\r\n"
                    "\tAverage value (DC offset) :\t-1.00%\t(x)\r\n\tFormat:\t\t\tPCM\r\n\t\xC2\xB5\tend"),
      "Head:\n"
      "    RMS power :                     1.00%     (-40.00 dB)\n"
      "    Average value (DC offset) :     -1.00%    (x)\n"
      "    Format:                         PCM\n"
      "    \xC2\xB5                               end");
}

TEST(GeneralVolume, IsToldInDecibels) {
  EXPECT_EQ(volumeText(1), "+0.0 dB");
  EXPECT_EQ(volumeText(2), "+6.0 dB");
  EXPECT_EQ(volumeText(0.1f), "-20.0 dB");
  EXPECT_EQ(volumeText(0), "silent");
}

TEST(DockLayout, TakesWhatTheToolkitWroteAndNothingDamaged) {
  const std::string middle =
      "name=middle;caption=;state=768;dir=5;layer=0;row=0;pos=0;prop=100000;bestw=20;besth=20;"
      "minw=-1;minh=-1;maxw=-1;maxh=-1;floatx=-1;floaty=-1;floatw=-1;floath=-1|";
  std::string pane = middle;
  pane.replace(pane.find("middle;caption="), 15, "pan;caption=MIDI pan");
  const std::string whole = "layout2|" + middle + pane + "dock_size(5,0,0)=20|dock_size(3,0,1)=206|";
  const std::vector<std::string> names{"middle", "pan"};
  EXPECT_TRUE(isDockLayout(whole, names));
  EXPECT_FALSE(isDockLayout(whole, {"middle"}));
  for (size_t size = 0; size < whole.size(); ++size) {
    // Between two parts: what is missing is not shown, or as large as it likes.
    const bool wholeParts = size > whole.find("name") && whole[size - 1] == '|';
    EXPECT_EQ(isDockLayout(whole.substr(0, size), names), wholeParts) << size;
  }
  const struct {
    const char *part, *damaged;
  } cases[] = {{"layout2", "layout1"},
               {"dir=5", "dir=9"},
               {"besth=20", "besth=99999999"},
               {"row=0", "row=-1"},
               {"state=768", "state=x"},
               {"(3,0,1)=206", "(3,0,1)=-9"},
               {"MIDI", "a=b;c"},
               {"(5,0,0)=20", "(5,0,0)=20000"}};
  for (const auto& [part, damaged] : cases) {
    std::string text = whole;
    text.replace(text.find(part), std::string(part).size(), damaged);
    EXPECT_FALSE(isDockLayout(text, names)) << damaged;
  }
  EXPECT_FALSE(isDockLayout(std::string(5000, 'x'), names));
}

class Profile : public testing::Test {
 protected:
  TemporaryFolder folder;
  RecordingPrompter prompter;
  Application app{prompter, nativeFileSystem(), folder.file("home")};
  WindowProfile profile{app};
};

TEST_F(Profile, RecentFilesAreAFewTheNewestFirstAndSurviveARestart) {
  int most = 10;
  RecentFiles recent(profile, most);
  int changes = 0;
  recent.onChanged = [&] { ++changes; };
  for (int i = 1; i <= 12; ++i) recent.add("/music/" + std::to_string(i) + ".wav");
  recent.add("/music/5.wav");
  recent.add("/music/5.wav");  // in front already
  recent.remove("/music/11.wav");
  recent.remove("/music/1.wav");  // fell off the end long ago
  EXPECT_EQ(changes, 14);

  std::vector<std::string> expected;
  for (const int i : {5, 12, 10, 9, 8, 7, 6, 4, 3})
    expected.push_back("/music/" + std::to_string(i) + ".wav");
  EXPECT_EQ(recent.paths(), expected);
  WindowProfile reopened(app);
  EXPECT_EQ(RecentFiles(reopened, most).paths(), expected);

  most = 3;
  recent.followSettings();
  expected.resize(3);
  EXPECT_EQ(recent.paths(), expected);
  most = 16;
  EXPECT_EQ(RecentFiles(reopened, most).paths(), expected);
}

TEST_F(Profile, ValuesThatMakeNoSenseLeaveTheFallback) {
  profile.setText("Dialog", "Length", "long");
  EXPECT_EQ(profile.real("Dialog", "Length", 1.5), 1.5);
  profile.setReal("Dialog", "Length", 0.1);
  EXPECT_EQ(profile.real("Dialog", "Length", 1.5), 0.1);
  EXPECT_EQ(readProfileString(app.profilePath(), "Dialog", "Length", ""), "0.1000000");
}

TEST_F(Profile, AFailedWriteIsToldOnce) {
  // A folder in the place of the file can't be written, whoever asks.
  ASSERT_FALSE(nativeFileSystem().makeFolders(app.profilePath()));
  profile.setInteger("Window", "X", 1);
  profile.setInteger("Window", "Y", 2);
  ASSERT_EQ(prompter.messages.size(), 1u);
  EXPECT_TRUE(prompter.messages[0].starts_with("Unable to write ")) << prompter.messages[0];
}

TEST(FileStamps, KnowAnotherFileOfTheSameName) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.wav");
  LooseDocument held(1, 4);
  held.doc.wave().setFileName(path);
  FileStamps stamps;
  std::ofstream(path) << "read";
  EXPECT_FALSE(stamps.changed(held.doc));
  stamps.take(held.doc);
  EXPECT_FALSE(stamps.changed(held.doc));
  std::ofstream(path) << "longer now";
  EXPECT_TRUE(stamps.changed(held.doc));
  stamps.take(held.doc);
  EXPECT_FALSE(stamps.changed(held.doc));
  std::filesystem::last_write_time(path,
                                   std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  EXPECT_TRUE(stamps.changed(held.doc));
  std::filesystem::remove(path);
  EXPECT_FALSE(stamps.changed(held.doc));
}

}  // namespace
}  // namespace plumetta
