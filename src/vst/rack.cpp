// SPDX-License-Identifier: GPL-3.0-or-later
// The chain as the person sees it; what sound does in it stands in rack_audio.cpp.
#include "vst/rack.h"

#include <cstdio>

namespace plumetta {
namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

bool inRack(int position) { return position >= 0 && position < Rack::kPositions; }
size_t at(int index) { return static_cast<size_t>(index); }

}  // namespace

std::string unableToLoad(const std::string& path) { return "Unable to load: " + path; }

Rack::Rack(VstHost& host) : host_(host), pins_(kBufferFrames) {
  for (auto& slot : positions_) slot.store(-1, kRelaxed);
}

// ---- Positions and slots --------------------------------------------------------------------------------

int Rack::slotAt(int position) const noexcept {
  return inRack(position) ? positions_[at(position)].load(kRelaxed) : -1;
}

int Rack::activeSlotAt(int position) const noexcept {
  const int slot = slotAt(position);
  return slot < 0 || slots_[at(slot)].muted.load(kRelaxed) || host_.isGivenUp(slot) ? -1 : slot;
}

bool Rack::isMuted(int position) const noexcept {
  const int slot = slotAt(position);
  return slot >= 0 && slots_[at(slot)].muted.load(kRelaxed);
}

void Rack::setSlotAt(int position, int slot) {
  if (inRack(position)) positions_[at(position)] = slot < VstHost::kSlots ? std::max(slot, -1) : -1;
}

void Rack::setMuted(int position, bool muted) {
  const int slot = slotAt(position);
  if (slot < 0) return;
  slots_[at(slot)].muted = muted;
  notify(position);
}

int Rack::programOf(int slot) const {
  return slot >= 0 && slot < VstHost::kSlots ? slots_[at(slot)].program : -1;
}

void Rack::recordProgram(int slot, int program) {
  if (slot >= 0 && slot < VstHost::kSlots) slots_[at(slot)].program = program;
}

VstPlugin* Rack::pluginAt(int position) const { return host_.plugin(slotAt(position)); }

// ---- The chain ------------------------------------------------------------------------------------------

RackAddition Rack::add(const std::string& path) {
  for (int position = 0; position < kPositions; ++position) {
    if (!occupied(position)) return addAt(position, path);
  }
  return {-1, kRackFull};
}

RackAddition Rack::addAt(int position, const std::string& path) {
  if (!inRack(position)) position = 0;
  if (occupied(position)) remove(position);
  const int slot = host_.open(path);
  if (slot < 0) return {-1, unableToLoad(path)};
  slots_[at(slot)].muted = false;
  setSlotAt(position, slot);
  const VstPlugin& plugin = *host_.plugin(slot);
  if (plugin.hasEditor() && editorWanted) editorWanted(position);
  plugin.selectProgram(0);
  recordProgram(slot, 0);
  notify(position);
  return {position, {}};
}

bool Rack::isEmpty() const {
  for (int position = 0; position < kPositions; ++position) {
    if (occupied(position)) return false;
  }
  return true;
}

bool Rack::remove(int position) {
  const int slot = slotAt(position);
  if (slot < 0) return false;
  closeEditor(slot);
  host_.close(slot);
  slots_[at(slot)].muted = false;
  setSlotAt(position, -1);
  recordProgram(slot, -1);
  notify(position);
  return true;
}

bool Rack::exchange(int first, int second) {
  if (!inRack(first) || !inRack(second)) return false;
  const int slot = slotAt(first);
  const int other = slotAt(second);
  setSlotAt(first, -1);  // rather out of one block than twice in it
  setSlotAt(second, slot);
  setSlotAt(first, other);
  notify(first);
  notify(second);
  return true;
}

void Rack::clear() {
  closeAllEditors();
  host_.closeAll();
  for (SlotEntry& entry : slots_) {
    entry.muted = false;
    entry.program = -1;
  }
  for (int position = 0; position < kPositions; ++position) {
    const bool was = occupied(position);
    setSlotAt(position, -1);
    if (was) notify(position);
  }
}

std::string Rack::lineText(int position) const {
  const VstPlugin* plugin = pluginAt(position);
  if (plugin == nullptr) return kEmptyLine;
  const std::string& name = plugin->effectName();
  std::string line = name.empty() ? plugin->fileName() : name + "   (" + plugin->fileName() + ")";
  if (isMuted(position)) line += " (muted)";
  return line;
}

int64_t Rack::latencyFrames() const {
  int64_t frames = 0;
  for (int position = 0; position < kPositions; ++position) {
    const VstPlugin* plugin = host_.plugin(activeSlotAt(position));
    if (plugin != nullptr && plugin->canReplace()) frames += std::max(plugin->initialDelay(), 0);
  }
  return frames;
}

void Rack::notify(int position) const {
  if (positionChanged) positionChanged(position);
}

// ---- Programs and parameters ----------------------------------------------------------------------------

bool Rack::selectProgram(int position, int program) {
  const VstPlugin* plugin = pluginAt(position);
  if (plugin == nullptr || program < 0 || program >= plugin->programCount()) return false;
  plugin->selectProgram(program);
  recordProgram(slotAt(position), program);
  notify(position);
  return true;
}

std::string Rack::programLine(int position, int program) const {
  const VstPlugin* plugin = pluginAt(position);
  if (plugin == nullptr) return {};
  char number[24];
  std::snprintf(number, sizeof number, "%3.3d: ", program);
  return number + plugin->programName(program);
}

std::vector<std::string> Rack::programLines(int position) const {
  std::vector<std::string> lines;
  const VstPlugin* plugin = pluginAt(position);
  for (int i = 0; plugin != nullptr && i < plugin->programCount(); ++i)
    lines.push_back(programLine(position, i));
  return lines;
}

bool Rack::setParameter(int position, int index, float value) {
  const VstPlugin* plugin = pluginAt(position);
  if (plugin == nullptr || index < 0 || index >= plugin->parameterCount()) return false;
  plugin->setParameter(index, value);
  notify(position);
  return true;
}

std::string Rack::parameterText(int position, int index) const {
  const VstPlugin* plugin = pluginAt(position);
  return plugin != nullptr ? plugin->parameterDisplay(index) + plugin->parameterLabel(index) : "";
}

// ---- Editors --------------------------------------------------------------------------------------------

void Rack::closeEditor(int slot) {
  const VstPlugin* plugin = host_.plugin(slot);
  if (plugin == nullptr) return;
  host_.closeEditor(slot);
  if (plugin->hasEditor() && editorClosed) editorClosed(slot);
}

void Rack::closeAllEditors() {
  for (int slot = 0; slot < VstHost::kSlots; ++slot) closeEditor(slot);
}

}  // namespace plumetta
