// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/vst_host.h"

#include <cmath>
#include <stdexcept>
#include <thread>
#include <utility>

#include "core/keep_for_good.h"

namespace plumetta {
namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr std::chrono::seconds kPatience{2};

// What a slot's gate is made of. Only a slot that is loaded, and nothing else, can be entered.
enum GateBit : unsigned {
  kGateLoaded = 1,
  kGateBusy = 2,
  kGateClosing = 4,
  kGateGivenUp = 8,
};

std::atomic<VstHost*> currentHost{nullptr};

bool inTable(int slot) { return slot >= 0 && slot < VstHost::kSlots; }
size_t at(int slot) { return static_cast<size_t>(slot); }

// The time information is read by plug-ins wherever they like, and written by more than one thread.
template <class Value>
void put(Value& place, Value value) {
  std::atomic_ref<Value>(place).store(value, kRelaxed);
}
template <class Value>
Value get(Value& place) {
  return std::atomic_ref<Value>(place).load(kRelaxed);
}

VstTimeInfo initialTime() {
  VstTimeInfo time{};
  time.sampleRate = 44100.0;
  time.tempo = 128.0;
  time.timeSigNumerator = 4;
  time.timeSigDenominator = 4;
  time.smpteFrameRate = 1;
  time.flags = kVstPpqPosValid | kVstTempoValid | kVstBarsValid | kVstTimeSigValid;
  return time;
}

}  // namespace

std::string PluginFault::text() const {
  return kind == hangs ? name + " does not answer any more. It is bypassed until the program is started anew."
                       : name + " has made samples that are no numbers. They were silenced.";
}

VstHost::VstHost() : timeInfo_(initialTime()) {
  VstHost* none = nullptr;
  if (!currentHost.compare_exchange_strong(none, this)) throw std::logic_error("there is a host already");
}

VstHost::~VstHost() {
  closeAll();
  VstHost* self = this;
  currentHost.compare_exchange_strong(self, nullptr);
}

VstHost* VstHost::current() noexcept { return currentHost; }

// ---- Plug-ins -------------------------------------------------------------------------------------------

// One that was abandoned keeps its slot while somebody is still in it. kSlots when there is none.
int VstHost::firstFreeSlot() const {
  int slot = 0;
  while (slot < kSlots && (table_[at(slot)] != nullptr || (gates_[at(slot)].state & kGateBusy) != 0)) ++slot;
  return slot;
}

int VstHost::open(const std::string& path) { return openAt(path, firstFreeSlot()); }

int VstHost::openAt(const std::string& path, int slot) {
  if (!inTable(slot) || table_[at(slot)] != nullptr) return -1;
  Gate& gate = gates_[at(slot)];
  if ((gate.state & kGateBusy) != 0) return -1;
  auto plugin = std::make_unique<VstPlugin>();
  if (plugin->load(path) != 0) return -1;
  plugin->dispatch(effOpen);
  plugin->dispatch(effSetSampleRate, 0, 0, nullptr, sampleRate());
  plugin->dispatch(effSetBlockSize, 0, blockSize());
  plugin->readInfo();
  VstSpeakerArrangement& stereo = plugin->speakerArrangement();
  plugin->dispatch(effSetSpeakerArrangement, 0, reinterpret_cast<intptr_t>(&stereo), &stereo);
  plugin->dispatch(effMainsChanged, 0, 1);
  effects_[at(slot)] = plugin->effect();
  table_[at(slot)] = plugin.get();
  owned_[at(slot)] = std::move(plugin);
  gate.notANumber = false;
  gate.notANumberTold = gate.hangTold = false;
  gate.state = kGateLoaded;
  return slot;
}

bool VstHost::waitUntilIdle(const Gate& gate) const {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while ((gate.state & kGateBusy) != 0) {
    // Of one that is known to hang there is nothing to wait for.
    if ((gate.state & kGateGivenUp) != 0 || std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

void VstHost::close(int slot) {
  if (plugin(slot) == nullptr) return;
  Gate& gate = gates_[at(slot)];
  gate.state |= kGateClosing;  // from here on nobody enters
  const bool idle = waitUntilIdle(gate);
  effects_[at(slot)] = nullptr;
  table_[at(slot)] = nullptr;
  std::unique_ptr<VstPlugin> plugin = std::move(owned_[at(slot)]);
  if (!idle) {
    const std::lock_guard held(watch_);
    if (!gate.hangTold) faults_.push_back({slot, plugin->displayName(), PluginFault::hangs});
    giveUp(slot);
    keepForGood(std::move(plugin));  // somebody is in its code, and in its library
    return;
  }
  gate.state = 0;
  plugin->dispatch(effMainsChanged, 0, 0);
  plugin->close();
}

void VstHost::closeAll() {
  for (int slot = 0; slot < kSlots; ++slot) close(slot);
}

VstPlugin* VstHost::plugin(int slot) const noexcept {
  return inTable(slot) ? table_[at(slot)].load() : nullptr;
}

int VstHost::slotOf(const AEffect* effect) const noexcept {
  if (effect == nullptr) return -1;
  for (int slot = 0; slot < kSlots; ++slot) {
    if (effects_[at(slot)] == effect) return slot;
  }
  return -1;
}

// ---- What plug-ins hear ---------------------------------------------------------------------------------

// Those that hang are left alone.
template <class Call>
void VstHost::forEachPlugin(Call call) {
  for (int slot = 0; slot < kSlots; ++slot) {
    if (VstPlugin* plugin = this->plugin(slot); plugin != nullptr && !isGivenUp(slot)) call(*plugin);
  }
}

float VstHost::sampleRate() noexcept { return static_cast<float>(get(timeInfo_.sampleRate)); }

double VstHost::tempo() noexcept { return get(timeInfo_.tempo); }

void VstHost::setSampleRate(float hz) {
  if (hz == sampleRate()) return;
  put(timeInfo_.sampleRate, static_cast<double>(hz));
  forEachPlugin([hz](VstPlugin& plugin) { plugin.dispatch(effSetSampleRate, 0, 0, nullptr, hz); });
}

void VstHost::setBlockSize(int frames) {
  if (frames == blockSize_) return;
  blockSize_ = frames;
  forEachPlugin([frames](VstPlugin& plugin) { plugin.dispatch(effSetBlockSize, 0, frames); });
}

void VstHost::setTempo(float bpm) {
  constexpr float kTooFast = 500.0f;
  if (bpm > 0.0f && bpm < kTooFast) put(timeInfo_.tempo, static_cast<double>(bpm));
}

void VstHost::setHostStrings(const std::string& product, const std::string& vendor) {
  product_ = product;
  vendor_ = vendor;
}

void VstHost::setTransportPlaying(bool playing) noexcept {
  if (playing != lastPlaying_) setTransportChanged(true);
  lastPlaying_ = playing;
  const std::atomic_ref<int32_t> flags(timeInfo_.flags);
  playing ? flags.fetch_or(kVstTransportPlaying, kRelaxed) : flags.fetch_and(~kVstTransportPlaying, kRelaxed);
}

void VstHost::setTransportChanged(bool changed) noexcept {
  const std::atomic_ref<int32_t> flags(timeInfo_.flags);
  changed ? flags.fetch_or(kVstTransportChanged, kRelaxed) : flags.fetch_and(~kVstTransportChanged, kRelaxed);
}

void VstHost::setPosition(double sample) noexcept {
  constexpr double kSecondsPerMinute = 60.0;
  const double quarter = sample * (get(timeInfo_.tempo) / kSecondsPerMinute) / get(timeInfo_.sampleRate);
  const double bar = timeInfo_.timeSigNumerator * 4.0 / timeInfo_.timeSigDenominator;
  put(timeInfo_.samplePos, sample);
  put(timeInfo_.ppqPos, quarter);
  put(timeInfo_.barStartPos, std::floor(quarter / bar) * bar);
}

// ---- Editors --------------------------------------------------------------------------------------------

void VstHost::idle() {
  forEachPlugin([](VstPlugin& plugin) {
    if (plugin.editorOpen) plugin.dispatch(effEditIdle);
    if (plugin.needsIdle) plugin.dispatch(effIdle);
  });
}

int VstHost::parameterCount(int slot) const {
  const VstPlugin* plugin = this->plugin(slot);
  return plugin != nullptr ? plugin->parameterCount() : 0;
}

intptr_t VstHost::editorRectangle(int slot, ERect*& rectangle) {
  rectangle = nullptr;
  const VstPlugin* plugin = this->plugin(slot);
  return plugin != nullptr ? plugin->dispatch(effEditGetRect, 0, 0, &rectangle) : 0;
}

intptr_t VstHost::openEditor(int slot, void* parent) {
  VstPlugin* plugin = this->plugin(slot);
  if (plugin == nullptr) return 0;
  const intptr_t answer = plugin->dispatch(effEditOpen, 0, 0, parent);
  if (answer >= 1) plugin->editorOpen = true;
  return answer;
}

void VstHost::closeEditor(int slot) {
  VstPlugin* plugin = this->plugin(slot);
  if (plugin == nullptr || !plugin->editorOpen) return;
  plugin->editorOpen = false;
  if (!isGivenUp(slot)) plugin->dispatch(effEditClose);
}

// ---- Processing -----------------------------------------------------------------------------------------

VstPlugin* VstHost::beginProcessing(int slot) noexcept {
  if (!inTable(slot)) return nullptr;
  Gate& gate = gates_[at(slot)];
  unsigned loaded = kGateLoaded;
  if (!gate.state.compare_exchange_strong(loaded, kGateLoaded | kGateBusy)) return nullptr;
  gate.turn.fetch_add(1, kRelaxed);
  return table_[at(slot)].load(kRelaxed);
}

VstPlugin* VstHost::waitToProcess(int slot) noexcept {
  for (;;) {
    if (VstPlugin* plugin = beginProcessing(slot)) return plugin;
    if (!inTable(slot) || gates_[at(slot)].state != (kGateLoaded | kGateBusy)) return nullptr;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void VstHost::endProcessing(int slot) noexcept { gates_[at(slot)].state &= ~unsigned{kGateBusy}; }

void VstHost::noteNotANumber(int slot) noexcept { gates_[at(slot)].notANumber.store(true, kRelaxed); }

void VstHost::giveUp(int slot) noexcept {
  if (!isGivenUp(slot)) ++abandoned_;
  gates_[at(slot)].state |= kGateGivenUp;
}

bool VstHost::isGivenUp(int slot) const noexcept {
  return inTable(slot) && (gates_[at(slot)].state & kGateGivenUp) != 0;
}

// Seen in the same call for longer than can be borne.
void VstHost::watchForHang(int slot) {
  Gate& gate = gates_[at(slot)];
  const auto now = std::chrono::steady_clock::now();
  const unsigned turn = gate.turn.load(kRelaxed);
  const bool busy = (gate.state & kGateBusy) != 0;
  if (!busy || turn != gate.seenTurn || gate.seenAt == std::chrono::steady_clock::time_point{}) {
    gate.seenTurn = turn;
    gate.seenAt = now;
  } else if (now - gate.seenAt >= kPatience) {
    giveUp(slot);
  }
}

void VstHost::watchForHangs() {
  const std::lock_guard held(watch_);
  for (int slot = 0; slot < kSlots; ++slot) {
    if (table_[at(slot)] != nullptr && !isGivenUp(slot)) watchForHang(slot);
  }
}

std::vector<PluginFault> VstHost::takeFaults() {
  watchForHangs();
  const std::lock_guard held(watch_);
  std::vector<PluginFault> faults = std::exchange(faults_, {});
  for (int slot = 0; slot < kSlots; ++slot) {
    const VstPlugin* plugin = this->plugin(slot);
    if (plugin == nullptr) continue;
    Gate& gate = gates_[at(slot)];
    if (isGivenUp(slot) && !gate.hangTold) {
      gate.hangTold = true;
      faults.push_back({slot, plugin->displayName(), PluginFault::hangs});
    }
    if (gate.notANumber && !gate.notANumberTold) {
      gate.notANumberTold = true;
      faults.push_back({slot, plugin->displayName(), PluginFault::notANumber});
    }
  }
  return faults;
}

}  // namespace plumetta
