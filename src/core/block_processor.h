// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// A chain of plug-ins, as playback sees it.
class BlockProcessor {
 public:
  virtual ~BlockProcessor() = default;

  // The rate, in Hz, of all blocks from now on. UI thread, while no block is being processed.
  virtual void setSampleRate(int hz) = 0;

  // Audio thread; none of these allocates or waits.
  // Where the next block stands, in frames of the output.
  virtual void setPosition(double outputFrame) noexcept = 0;
  virtual void setPlaying(bool playing) noexcept = 0;
  // Works in place on `channelCount` buffers of `frames` floats each.
  virtual void process(float** channels, int channelCount, int frames) noexcept = 0;
};

}  // namespace plumetta
