// SPDX-License-Identifier: GPL-3.0-or-later
// What filters and changes of rate and pitch do to a document beside its samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/loose_document.h"

namespace plumetta {
namespace {

bool run(LooseDocument& loose, const char* id, const Arguments& arguments) {
  return runCommandOf(loose.doc, id, arguments);
}

ParameterValue whole(int64_t n) { return n; }

struct Call {
  const char* id;
  Arguments arguments;
};

void expectUntouched(LooseDocument& loose, int32_t frames, const std::string& what) {
  EXPECT_EQ(framesIn(loose.doc.wave()), span(0, frames - 1)) << what;
  EXPECT_EQ(loose.doc.wave().sampleRate(), 44100u) << what;
  EXPECT_TRUE(loose.history.names().empty()) << what;
  EXPECT_FALSE(loose.doc.journal().canUndo()) << what;
  EXPECT_FALSE(loose.doc.modified()) << what;
}

TEST(Processing, SettingsThatRunAwayAreRefusedAndTakenBack) {
  for (const bool undoInRam : {true, false}) {
    for (const Call& call : {Call{"band", {whole(1), 1000.0, 90.0}},
                             {"band", {whole(1), 0.0, 0.5}},
                             {"chebyshev", {whole(0), 0.0, 0.5, whole(4)}},
                             {"chebyshev", {whole(1), 23000.0, 0.5, whole(16)}},
                             {"chebyshev", {whole(0), 30000.0, 1.0, whole(8)}}}) {
      LooseDocument loose(2, 20000);
      loose.settings.undoInRam = undoInRam;
      loose.doc.setModified(false);
      EXPECT_FALSE(run(loose, call.id, call.arguments));
      ASSERT_EQ(loose.prompter.messages.size(), 1u) << call.id;
      expectUntouched(loose, 20000, call.id);
    }
  }
}

TEST(Processing, CancelledWorkLeavesTheDocumentAsItWas) {
  const Call calls[] = {{"fir", {whole(0), 1000.0, whole(101)}},
                        {"chebyshev", {whole(0), 1000.0, 0.5, whole(4)}},
                        {"rc", {whole(0), 0.5}},
                        {"moving-average", {whole(30)}},
                        {"resample", {22050.0}},
                        {"resample", {22050.0, whole(10), true, false}},
                        {"resample", {48000.0, whole(5), true, true}},
                        {"pitch", {whole(-3), whole(0)}},
                        {"pitch-fft", {1.5}}};
  constexpr int32_t kFrames = 150000;  // several rounds of everything
  for (const Call& call : calls) {
    LooseDocument loose(1, kFrames);
    loose.doc.setModified(false);
    loose.prompter.cancelAfter = 1;
    EXPECT_FALSE(run(loose, call.id, call.arguments)) << call.id;
    EXPECT_TRUE(loose.prompter.messages.empty()) << call.id;
    EXPECT_GT(loose.prompter.reports, 1) << call.id;
    expectUntouched(loose, kFrames, call.id);
  }
}

TEST(Processing, ResamplingMovesSelectionCursorAndViewAlong) {
  LooseDocument loose(2, 4000);
  loose.doc.select(1000, 2000);
  loose.doc.setCursor(300);
  loose.doc.setScrollAndZoom(3000, 1);
  ASSERT_TRUE(run(loose, "resample", {22050.0}));
  const ViewState& view = loose.doc.view();
  EXPECT_EQ(view.selectionStart, 500);
  EXPECT_EQ(view.selectionEnd, 1000);
  EXPECT_EQ(view.cursor, 0);
  EXPECT_LT(view.firstVisibleFrame, 2000);
  EXPECT_EQ(loose.doc.wave().sampleRate(), 22050u);
  EXPECT_EQ(loose.history.names().back(), "Resample to 22050 Hz");
  ASSERT_TRUE(run(loose, "undo", {}));
  EXPECT_EQ(framesIn(loose.doc.wave()), span(0, 3999));
  EXPECT_EQ(loose.doc.wave().sampleRate(), 44100u);
  EXPECT_EQ(loose.doc.view().selectionEnd, 2000);
  ASSERT_TRUE(run(loose, "redo", {}));
  EXPECT_EQ(loose.doc.wave().frames(), 2000);
  ASSERT_TRUE(run(loose, "undo", {}));
  EXPECT_EQ(framesIn(loose.doc.wave()), span(0, 3999));
}

TEST(Processing, PitchKeepsTheRateAndFftKeepsTheLengthToo) {
  LooseDocument loose(2, 4000);
  ASSERT_TRUE(run(loose, "pitch", {whole(12), whole(0)}));
  EXPECT_NEAR(loose.doc.wave().frames(), 2000, 1);
  EXPECT_EQ(loose.doc.wave().sampleRate(), 44100u);
  EXPECT_EQ(loose.history.names().back(), "Pitch shift 12 semitone 0 cent");
  ASSERT_TRUE(run(loose, "undo", {}));
  EXPECT_EQ(framesIn(loose.doc.wave()), span(0, 3999));

  loose.doc.wave().setActive(ActiveOperation::solo, 0);
  ASSERT_TRUE(run(loose, "pitch-fft", {1.5}));
  EXPECT_EQ(loose.history.names().back(), "Pitch shift 1.50");
  const CWave& wave = loose.doc.wave();
  ASSERT_EQ(wave.frames(), 4000);
  float peaks[2] = {};
  for (int32_t f = 0; f < 4000; ++f) {
    for (int c = 0; c < 2; ++c) peaks[c] = std::max(peaks[c], std::fabs(wave.sample(f, c)));
  }
  EXPECT_FLOAT_EQ(peaks[0], 1.0f);  // only active channels are brought to full scale
  EXPECT_GT(peaks[1], 100.0f);
  ASSERT_TRUE(run(loose, "undo", {}));
  EXPECT_EQ(framesIn(loose.doc.wave()), span(0, 3999));
}

TEST(Processing, TinyFilesPassThroughEverything) {
  for (const int32_t frames : {0, 1, 2, 3}) {
    for (const Call& call : {Call{"fir", {whole(1), 1000.0, whole(2)}},
                             {"rc", {whole(0), 0.5}},
                             {"band", {whole(0), 1000.0, 1.0}},
                             {"chebyshev", {whole(0), 1000.0, 0.5, whole(8)}},
                             {"moving-average", {whole(3)}},
                             {"resample", {96000.0, whole(5)}},
                             {"resample", {10.0}},
                             {"pitch", {whole(-7), whole(3)}},
                             {"pitch-fft", {0.5}}}) {
      LooseDocument loose(16, frames);
      run(loose, call.id, call.arguments);
      const CWave& wave = loose.doc.wave();
      const float* end = wave.samples() + wave.sampleCount();
      EXPECT_TRUE(std::all_of(wave.samples(), end, [](float x) { return std::isfinite(x); })) << call.id;
    }
  }
}

}  // namespace
}  // namespace plumetta
