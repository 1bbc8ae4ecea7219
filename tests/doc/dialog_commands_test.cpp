// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

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

bool run(LooseDocument& loose, const char* id, const Arguments& arguments = {}) {
  return runCommandOf(loose.doc, id, arguments);
}

ParameterValue number(int64_t n) { return n; }

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

TEST(SynthesisCommand, TakesTheSmallestFilesAndTheMostChannels) {
  for (const int channels : {1, 16}) {
    for (int32_t frames = 0; frames < 4; ++frames) {
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
