// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/wave_progress.h"

namespace plumetta {

class AudioLock;
class CWave;

// A chain of plug-ins, as playback sees it.
class BlockProcessor {
 public:
  virtual ~BlockProcessor() = default;

  // The rate, in Hz, of all blocks from now on. UI thread, while no block is being processed.
  virtual void setSampleRate(int hz) = 0;
  // By how much what comes out is late. UI thread.
  virtual int64_t latencyFrames() const { return 0; }

  // Audio thread; none of these allocates or waits.
  // Where the next block stands, in frames of the output.
  virtual void setPosition(double outputFrame) noexcept = 0;
  virtual void setPlaying(bool playing) noexcept = 0;
  // Works in place on `channelCount` buffers of `frames` floats each.
  virtual void process(float** channels, int channelCount, int frames) noexcept = 0;
};

inline constexpr const char* kNoActivePlugin = "There is no active plug-in in the rack.";

enum class ChainResult {
  done,       // also where there was nothing to do
  cancelled,  // through the progress
  failed,     // a plug-in did not come back, or there was no memory
};

// A chain of plug-ins, as commands and batches see it. Any thread; one piece of work at a time, others wait.
class ChainProcessor {
 public:
  virtual ~ChainProcessor() = default;

  // How many plug-ins work on samples. One that is given up counts no longer, and the others go on.
  virtual int activePlugins() const = 0;
  bool hasActivePlugin() const { return activePlugins() > 0; }
  // What plug-ins have done wrong since the last call, a text for a person each.
  virtual std::vector<std::string> takeFaultTexts() = 0;
  // Replaces the frames from the smaller end up to, but without, the larger one by what the chain makes of
  // them, or all frames when both are the same. Does nothing for a negative end. The lock is held only for
  // the moments in which samples are taken and given back. After anything but `done` samples are partly
  // changed.
  virtual ChainResult applyTo(CWave& wave, AudioLock& lock, int64_t start, int64_t end,
                              const WaveProgress& progress) = 0;
};

}  // namespace plumetta
