// SPDX-License-Identifier: GPL-3.0-or-later
// Plays a document on the sound device while it is edited at random: play_while_editing SECONDS. Prints the
// number of edits and of underruns; ends with 0 when there were none of the latter.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "app/application.h"
#include "support/random_editor.h"
#include "support/recording_prompter.h"
#include "support/temporary_folder.h"
#include "support/waves.h"

namespace {

using namespace plumetta;
using Clock = std::chrono::steady_clock;

constexpr int32_t kFrames = 20 * 44100;

CPlumettaDoc& open(Application& app) {
  CPlumettaDoc& doc = *app.newDocument(44100, 2, 32, 0, kFormatFloat);
  doc.wave().insertBuffer(*countingWave(2, kFrames), 0);
  return doc;
}

}  // namespace

int main(int argc, char** argv) {
  const auto end = Clock::now() + std::chrono::seconds(argc > 1 ? std::atoi(argv[1]) : 5);
  TemporaryFolder folder;
  RecordingPrompter prompter;
  Application app(prompter, nativeFileSystem(), folder.file("home"));
  int edits = 0;
  for (unsigned round = 0; Clock::now() < end; ++round) {
    CPlumettaDoc& doc = open(app);
    RandomEditor editor(app, doc, round);
    for (int step = 0; step < 40 && doc.wave().frames() > 0 && Clock::now() < end; ++step, ++edits) {
      editor.act();
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    app.closeDocument(doc);
  }
  const bool ran = app.output().running();
  std::printf("edits %d\nran %d\nunderruns %d\n", edits, ran ? 1 : 0, app.output().underruns());
  const int underruns = app.output().underruns();
  app.output().stop();
  return ran && underruns == 0 ? 0 : 1;
}
