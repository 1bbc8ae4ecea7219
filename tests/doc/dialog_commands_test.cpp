// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "doc/command.h"
#include "doc/selection_tempo.h"
#include "doc/tap_tempo.h"
#include "support/loose_document.h"

namespace plumetta {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct SlowDocument : LooseDocument {
  SlowDocument(int channels, int32_t frames) : LooseDocument(channels, frames) {
    doc.wave().setSampleRate(8000);
  }
};

bool run(LooseDocument& loose, const char* id, Arguments arguments = {}) {
  const Command* command = findCommand(id);
  for (size_t i = arguments.size(); i < command->parameters.size(); ++i) {
    arguments.push_back(command->parameters[i].fallback);
  }
  return runCommand(loose.doc, *command, std::move(arguments)) == CommandOutcome::done;
}

ParameterValue number(int64_t n) { return n; }

// Mono, 8000 frames a second, 1.0 at the frames named by the text's other characters than '.'.
void sound(LooseDocument& loose, const std::string& shape) {
  loose.doc.createNew(8000, 1, 32, static_cast<int64_t>(shape.size()), kFormatFloat);
  for (size_t i = 0; i < shape.size(); ++i) {
    loose.doc.wave().setSample(static_cast<int32_t>(i), 0, shape[i] == '.' ? 0.0f : 1.0f);
  }
}

constexpr double kTwoFrames = 0.00025;

TEST(SilenceCommands, RemoveItAndStartTheViewAnew) {
  SlowDocument loose(1, 1);
  sound(loose, "..x...xx.x..");
  loose.doc.wave().markers.add(6);
  loose.doc.setCursor(11);
  ASSERT_TRUE(run(loose, "silence-remover", {-6.0, kTwoFrames}));
  EXPECT_EQ(framesIn(loose.doc.wave()), (std::vector<int>{1, 1, 1, 0, 1}));
  EXPECT_EQ(loose.doc.wave().markers[0].position, 1);
  EXPECT_EQ(loose.doc.view().cursor, 0);
  ASSERT_TRUE(run(loose, "undo"));
  EXPECT_EQ(loose.doc.wave().frames(), 12);
  loose.doc.select(3, 11);  // in the selection alone
  ASSERT_TRUE(run(loose, "silence-remover", {-6.0, kTwoFrames}));
  EXPECT_EQ(framesIn(loose.doc.wave()), (std::vector<int>{0, 0, 1, 1, 1, 0, 1}));
  ASSERT_TRUE(run(loose, "auto-trim", {-6.0}));
  EXPECT_EQ(framesIn(loose.doc.wave()), (std::vector<int>{1, 1, 1, 0, 1}));
  loose.prompter.messages.clear();
  EXPECT_FALSE(run(loose, "auto-trim", {6.0}));
  EXPECT_FALSE(run(loose, "silence-remover", {6.0, 0.0}));
  EXPECT_EQ(loose.prompter.messages.size(), 2u);
  EXPECT_EQ(loose.doc.wave().frames(), 5);
}

TEST(MarkerCommands, PartTheFileOrTheSelection) {
  SlowDocument loose(1, 1001);  // at 8000 frames a second
  ASSERT_TRUE(run(loose, "marker-bpm", {1600.0, 1.0}));
  EXPECT_EQ(markerPositions(loose.doc.wave()), (std::vector<int>{0, 300, 600, 900}));
  loose.doc.select(200, 500);
  ASSERT_TRUE(run(loose, "marker-bpm", {7200.0, 2.0}));  // every 133 1/3 frames
  EXPECT_EQ(markerPositions(loose.doc.wave()), (std::vector<int>{0, 300, 600, 900, 200, 333, 467}));
  run(loose, "marker-clear");
  ASSERT_TRUE(run(loose, "set-region", {number(4)}));  // 301 frames, and where the file goes on
  EXPECT_EQ(markerPositions(loose.doc.wave()), (std::vector<int>{200, 275, 350, 425, 501}));
  run(loose, "marker-clear");
  loose.doc.selectNone();
  ASSERT_TRUE(run(loose, "set-region", {number(3)}));
  EXPECT_EQ(markerPositions(loose.doc.wave()), (std::vector<int>{0, 333, 667}));
}

TEST(SynthesisCommand, PutsTheSignalWhereItIsWanted) {
  // Ten frames of an impulse train of one impulse into 20 frames that count; what stands at frames 0, 5, 20.
  struct Case {
    int64_t position, mix;
    int32_t frames, start;
    float at0, at5;
  };
  const Case cases[] = {{0, 0, 30, 0, 1, 0},  {1, 0, 30, 20, 0, 5}, {2, 0, 30, 5, 0, 1}, {0, 1, 20, 0, 1, 5},
                        {1, 1, 30, 20, 0, 5}, {2, 1, 20, 5, 0, 6},  {0, 2, 20, 0, 1, 0}, {2, 2, 20, 5, 0, 1}};
  for (const Case& one : cases) {
    SlowDocument loose(1, 20);
    loose.doc.setCursor(5);
    ASSERT_TRUE(run(loose, "synthesis", {number(14), 1.0, 10 / 8000.0, 1.0, one.position, one.mix}));
    EXPECT_EQ(loose.doc.wave().frames(), one.frames);
    EXPECT_EQ(loose.doc.wave().sample(0, 0), one.at0);
    EXPECT_EQ(loose.doc.wave().sample(5, 0), one.at5);
    EXPECT_EQ(loose.doc.view().selectionStart, one.start);
    EXPECT_EQ(loose.doc.view().selectionEnd, one.start + 9);
    EXPECT_EQ(loose.doc.view().cursor, one.start);
    ASSERT_TRUE(run(loose, "undo"));
    EXPECT_EQ(framesIn(loose.doc.wave()), span(0, 19));
  }
}

TEST(DialogCommands, RefuseWhatMakesNoSenseAndLeaveTheDocumentAsItWas) {
  struct Case {
    const char* id;
    Arguments arguments;
  };
  const Case cases[] = {
      {"auto-trim", {kNan}},
      {"silence-remover", {-40.0, -1.0}},
      {"auto-region", {-40.0, kInfinity}},
      {"auto-region", {-40.0, 0.1, number(3)}},
      {"set-region", {number(0)}},
      {"set-region", {number(101)}},  // of 100 frames
      {"marker-bpm", {0.0}},
      {"marker-bpm", {kNan}},
      {"marker-bpm", {10000.0, 0.001}},  // less than a frame
      {"gapper", {number(3)}},
      {"gapper", {number(0), 0.0}},
      {"gapper", {number(0), 4.0, true, kNan}},
      {"gapper", {number(0), 4.0, true, 4.0, 101.0}},
      {"synthesis", {number(13)}},
      {"synthesis", {number(15)}},
      {"synthesis", {number(0), 4000.0}},
      {"synthesis", {number(0), kNan}},
      {"synthesis", {number(9), 3500.0}},
      {"synthesis", {number(12), 1e15}},
      {"synthesis", {number(0), 440.0, 0.0}},
      {"synthesis", {number(0), 440.0, 1e6}},
      {"synthesis", {number(0), 440.0, 1.0, kInfinity}},
      {"synthesis", {number(0), 440.0, 1.0, 1.0, number(3)}},
  };
  for (const Case& one : cases) {
    SlowDocument loose(2, 100);
    EXPECT_FALSE(run(loose, one.id, one.arguments)) << one.id;
    EXPECT_EQ(loose.prompter.messages.size(), 1u) << one.id;
    EXPECT_EQ(framesIn(loose.doc.wave()), span(0, 99));
    EXPECT_FALSE(loose.doc.journal().canUndo());
    EXPECT_TRUE(loose.history.names().empty());
  }
}

TEST(DialogCommands, AreTakenBackWhenCancelled) {
  for (const char* id : {"gapper", "synthesis"}) {
    SlowDocument loose(2, 10000);
    loose.prompter.cancelAfter = 1;
    EXPECT_FALSE(run(loose, id));
    EXPECT_EQ(framesIn(loose.doc.wave()), span(0, 9999)) << id;
    EXPECT_FALSE(loose.doc.modified());
  }
}

TEST(DialogCommands, TakeTheSmallestFilesAndTheMostChannels) {
  for (const int channels : {1, 16}) {
    for (int32_t frames = 0; frames < 4; ++frames) {
      for (const char* id : {"auto-trim", "silence-remover", "auto-region", "set-region", "marker-bpm",
                             "gapper", "scramble"}) {
        SlowDocument loose(channels, frames);
        run(loose, id);
      }
      for (int64_t type = 0; type <= 14; ++type) {
        SlowDocument loose(channels, frames);
        EXPECT_EQ(run(loose, "synthesis", {type, 999.0, 0.01}), type != 13) << type;
        EXPECT_EQ(loose.doc.wave().frames(), frames + (type != 13 ? 80 : 0));
        const float* samples = loose.doc.wave().samples();
        EXPECT_TRUE(std::all_of(samples, samples + loose.doc.wave().sampleCount(),
                                [](float x) { return std::isfinite(x); }));
      }
    }
  }
}

TEST(DialogCommands, OfAnEmptyDocumentAreUndoneLikeAllOthers) {
  SlowDocument loose(1, 20);
  loose.doc.select(0, 19);
  ASSERT_TRUE(run(loose, "cut"));
  ASSERT_TRUE(run(loose, "pitch", {number(-7), number(0)}));
  while (run(loose, "undo")) {
  }
  EXPECT_EQ(framesIn(loose.doc.wave()), span(0, 19));
}

TEST(Tempo, IsThatOfTheSelectionOrOfTheFinger) {
  SlowDocument loose(1, 10000);
  EXPECT_EQ(tempoProblem(loose.doc, 4), "Select file part first");
  loose.doc.select(1000, 8999);  // a second
  EXPECT_EQ(tempoProblem(loose.doc, 4), "");
  EXPECT_NE(tempoProblem(loose.doc, 0), "");
  EXPECT_NE(tempoProblem(loose.doc, kNan), "");
  EXPECT_DOUBLE_EQ(tempoOfSelection(loose.doc, 2.5), 150.0);
  TapTempo taps;
  EXPECT_FALSE(taps.tap(10));
  EXPECT_DOUBLE_EQ(*taps.tap(10.5), 120);
  EXPECT_DOUBLE_EQ(*taps.tap(12), 60);
  EXPECT_FALSE(taps.tap(14.1));  // begun anew
  for (int i = 1; i < 8; ++i) taps.tap(14.1 + i);
  for (int i = 1; i < 8; ++i) taps.tap(21.1 + i * 0.5);
  EXPECT_NEAR(*taps.tap(25.1), 120, 1e-9);  // the slow ones are forgotten
}

}  // namespace
}  // namespace plumetta
