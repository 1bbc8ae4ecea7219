// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>

#include "core/wave.h"

namespace plumetta {

// The ends of a selection, in either order; equal ends are none. Aligned for one access to both.
struct alignas(8) SelectionEnds {
  int32_t start = 0;
  int32_t end = 0;
};

// Where a document is played, told between the audio thread and the UI thread without a lock.
struct PlaybackPlace {
  std::atomic<double> position{0};     // the play position, in frames of the document
  std::atomic<int32_t> playCursor{0};  // where views show it
  // The document's cursor and selection as playback sees and moves them.
  std::atomic<int32_t> cursor{0};
  std::atomic<SelectionEnds> selection{};
  // Winding has moved the two: the document follows when it next looks.
  std::atomic<bool> wound{false};
  // Playing has ended by itself: views are to be drawn again.
  std::atomic<bool> redraw{false};
};
static_assert(std::atomic<SelectionEnds>::is_always_lock_free && std::atomic<double>::is_always_lock_free);

// What can be played: a document, as the playback engine sees it.
class PlaybackSource {
 public:
  virtual ~PlaybackSource() = default;

  // The audio thread reads its samples, layout, rate, active channels and envelope, under the audio lock.
  virtual const CWave& wave() const noexcept = 0;
  // Any thread.
  PlaybackPlace& playback() noexcept { return playback_; }

  // UI thread: brings a frame into the file.
  virtual void setCursor(int64_t frame) = 0;
  // UI thread: the play cursor goes back to the cursor, which comes into sight.
  virtual void playbackStopped() = 0;

 private:
  PlaybackPlace playback_;
};

}  // namespace plumetta
