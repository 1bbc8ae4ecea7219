// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/asio_callbacks.h"

#include <array>
#include <atomic>
#include <utility>

namespace plumetta {
namespace {

// Each set beyond the first is for a driver that was given up while it hung.
constexpr size_t kSets = 16;
constexpr int32_t kEngineVersion = 2;

struct SetState {
  std::atomic<bool> taken{false};
  std::atomic<AsioBufferFiller*> filler{nullptr};
  std::atomic<int> inside{0};
  std::atomic<bool> filling{false};
};

std::array<SetState, kSets> states;

// Whoever disconnects sees either `inside` raised or its own null seen here, for both sides go by the one
// order of all these operations.
void switchBuffers(SetState& state, int32_t half) noexcept {
  ++state.inside;
  AsioBufferFiller* filler = state.filler;
  // A driver that calls from two threads at once gets what the first has time for.
  if (filler != nullptr && (half == 0 || half == 1) && !state.filling.exchange(true)) {
    filler->fillBuffers(half);
    state.filling = false;
  }
  --state.inside;
}

template <size_t set>
AsioTime* onBufferSwitchTimeInfo(AsioTime*, int32_t half, AsioBool) {
  switchBuffers(states[set], half);
  return nullptr;
}

template <size_t set>
void onBufferSwitch(int32_t half, AsioBool processNow) {
  onBufferSwitchTimeInfo<set>(nullptr, half, processNow);
}

void onSampleRateChanged(AsioSampleRate) {}

int32_t onMessage(int32_t selector, int32_t value, void*, double*) { return asioHostAnswer(selector, value); }

template <size_t... set>
std::array<AsioCallbacks, kSets> makeSets(std::index_sequence<set...>) {
  return {AsioCallbacks{onBufferSwitch<set>, onSampleRateChanged, onMessage, onBufferSwitchTimeInfo<set>}...};
}

std::array<AsioCallbacks, kSets> sets = makeSets(std::make_index_sequence<kSets>{});

// The one after that which was taken last, so that a late call finds its set resting.
std::atomic<unsigned> nextSet{0};

}  // namespace

AsioCallbackSet::AsioCallbackSet() {
  for (size_t i = 0; i < kSets && index_ < 0; ++i) {
    const size_t candidate = nextSet++ % kSets;
    if (!states[candidate].taken.exchange(true)) index_ = static_cast<int>(candidate);
  }
}

AsioCallbackSet::~AsioCallbackSet() {
  if (index_ >= 0) states[static_cast<size_t>(index_)].taken = false;
}

AsioCallbacks* AsioCallbackSet::get() const noexcept {
  return index_ >= 0 ? &sets[static_cast<size_t>(index_)] : nullptr;
}

void AsioCallbackSet::connect(AsioBufferFiller& filler) noexcept {
  if (index_ >= 0) states[static_cast<size_t>(index_)].filler = &filler;
}

void AsioCallbackSet::disconnect() noexcept {
  if (index_ >= 0) states[static_cast<size_t>(index_)].filler = nullptr;
}

bool AsioCallbackSet::quiet() const noexcept {
  return index_ < 0 || states[static_cast<size_t>(index_)].inside == 0;
}

int32_t asioHostAnswer(int32_t selector, int32_t value) noexcept {
  switch (selector) {
    case kAsioSelectorSupported:
      return value == 2 || value == 3 || (value >= 5 && value <= 9) ? 1 : 0;
    case kAsioEngineVersion:
      return kEngineVersion;
    case kAsioResetRequest:  // these are taken note of, and nothing else
    case kAsioResyncRequest:
    case kAsioLatenciesChanged:
    case kAsioSupportsTimeInfo:
      return 1;
    default:
      return 0;
  }
}

}  // namespace plumetta
