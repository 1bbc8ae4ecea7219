// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/pin_buffers.h"

#include <algorithm>

namespace plumetta {

PinBuffers::PinBuffers(int framesPerPin)
    : frames_(framesPerPin), memory_(static_cast<size_t>(framesPerPin) * kBackedPins) {
  for (int pin = 0; pin < kMostPins; ++pin) pointers_[static_cast<size_t>(pin)] = own(pin);
}

float* PinBuffers::own(int pin) noexcept {
  const auto backed = static_cast<size_t>(std::min(pin, kBackedPins - 1));
  return memory_.data() + backed * static_cast<size_t>(frames_);
}

void PinBuffers::borrow(float** channels, int channelCount, int offsetFrames) noexcept {
  for (int pin = 0; pin < kMostPins; ++pin) {
    pointers_[static_cast<size_t>(pin)] = pin < channelCount ? channels[pin] + offsetFrames : own(pin);
  }
}

void PinBuffers::clear(int from, int to, int frames) noexcept {
  for (int pin = from; pin < std::min(to, kBackedPins); ++pin) {
    std::fill_n(pointers_[static_cast<size_t>(pin)], frames, 0.0f);
  }
}

}  // namespace plumetta
