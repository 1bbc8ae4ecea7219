// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/asio_driver.h"

namespace plumetta {

// What fills the buffers of a driver. Audio thread; never allocates, never waits but for the audio lock.
class AsioBufferFiller {
 public:
  virtual ~AsioBufferFiller() = default;
  // `half` is 0 or 1.
  virtual void fillBuffers(int half) noexcept = 0;
};

// Drivers call back without saying whom they mean. Each that is loaded is therefore given functions of its
// own, one of a small number of sets, so that one that was given up and calls on disturbs nobody.
class AsioCallbackSet {
 public:
  // Takes a set that nobody has; get() is null when all are taken.
  AsioCallbackSet();
  // Gives it back, once disconnected.
  ~AsioCallbackSet();
  AsioCallbackSet(const AsioCallbackSet&) = delete;
  AsioCallbackSet& operator=(const AsioCallbackSet&) = delete;

  // Stays where it is for good: drivers keep the pointer.
  AsioCallbacks* get() const noexcept;
  // Before this and after disconnect() a buffer switch does nothing. Any thread.
  void connect(AsioBufferFiller& filler) noexcept;
  void disconnect() noexcept;
  // Once disconnected: whether no buffer switch is under way any more.
  bool quiet() const noexcept;

 private:
  int index_ = -1;
};

// What the host answers to a driver's message.
int32_t asioHostAnswer(int32_t selector, int32_t value) noexcept;

}  // namespace plumetta
