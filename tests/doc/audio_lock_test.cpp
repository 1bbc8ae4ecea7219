// SPDX-License-Identifier: GPL-3.0-or-later
// A thread that reads samples under the audio lock, as playback does, while commands change them.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "doc/command.h"
#include "support/loose_document.h"

namespace plumetta {
namespace {

// Whoever waits has the lock after one turn, however short the pause between two turns is.
TEST(AudioLock, LongWorkLetsPlaybackIn) {
  for (const bool reports : {false, true}) {
    AudioLock lock;
    bool played = false;
    std::thread playback;
    {
      AudioLockHeld held(lock);
      playback = std::thread([&] {
        const AudioLockHeld turn(lock);
        played = true;
      });
      while (!held.wanted()) std::this_thread::yield();
      if (reports) {
        held.outside([] { return true; });
      } else {
        held.nextTurn();
      }
      EXPECT_TRUE(played);
    }
    playback.join();
  }
}

TEST(AudioLock, CommandsNeverChangeWhatPlaybackReads) {
  LooseDocument loose(2, 50000);
  CPlumettaDoc& doc = loose.doc;
  std::atomic<bool> stop{false};
  std::atomic<int> reads{0};
  std::thread playback([&] {
    double sum = 0;
    while (!stop) {
      const AudioLockHeld held(loose.lock);
      const CWave& wave = doc.wave();
      for (int32_t f = 0; f < wave.frames(); f += 97) sum += wave.sample(f, wave.channels() - 1);
      ++reads;
    }
    EXPECT_EQ(sum, sum);
  });
  for (int round = 0; round < 3; ++round) {
    doc.select(100, 30000);
    for (const char* id : {"quick-2", "quick-11", "quick-13", "quick-25", "cut", "paste", "paste-mix",
                           "channel-11", "channel-12", "trim", "normalize", "undo", "undo", "redo"}) {
      runCommand(doc, *findCommand(id));
    }
  }
  while (reads == 0) std::this_thread::yield();
  stop = true;
  playback.join();
  while (doc.journal().undo() == UndoResult::done) {
  }
  EXPECT_EQ(framesIn(doc.wave()), framesIn(*countingWave(2, 50000)));
}

}  // namespace
}  // namespace plumetta
