// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/chain_file.h"

#include <array>
#include <cmath>
#include <limits>

#include "platform/paths.h"
#include "platform/plugin_folders.h"
#include "platform/replace_file.h"
#include "vst/byte_fields.h"

namespace plumetta {
namespace {

constexpr std::string_view kChainMagic = "SORF";
constexpr std::string_view kPluginMagic = "VSTx";
constexpr int32_t kVersion = 1;
constexpr size_t kTotalAt = 4;  // where the byte count stands that is known last
constexpr size_t kPluginFieldBytes = 24;

// The old form writes its three table sizes into the file.
constexpr int32_t kTableEntries = 256;
constexpr int32_t kFolderBytes = 1024;
constexpr int32_t kNameBytes = 256;
constexpr uint8_t kSlotHolds = 255;

bool isPosition(int32_t position) { return position >= 0 && position < Rack::kPositions; }

// ---- Reading --------------------------------------------------------------------------------------------

bool readParameters(FieldReader& in, int32_t count, std::vector<float>& parameters) {
  if (count < 0 || static_cast<size_t>(count) > in.remaining() / sizeof(float)) return false;
  parameters.resize(static_cast<size_t>(count));
  for (float& value : parameters) in.little(value);
  return true;
}

bool readState(FieldReader& in, int32_t bytes, std::vector<uint8_t>& state) {
  std::span<const uint8_t> found;
  if (bytes < 0 || !in.take(static_cast<size_t>(bytes), found)) return false;
  state.assign(found.begin(), found.end());
  return true;
}

// Behind the record's magic.
bool readPlugin(FieldReader& in, ChainPlugin& plugin) {
  int32_t length = 0, muted = 0, parameterCount = 0, pathBytes = 0, stateBytes = 0;
  if (!in.little(length) || !in.little(plugin.position) || !in.little(plugin.program) || !in.little(muted) ||
      !in.little(parameterCount) || !in.little(pathBytes) || !in.little(stateBytes)) {
    return false;
  }
  plugin.recordedProgram = plugin.program;
  plugin.muted = muted != 0;
  return isPosition(plugin.position) && pathBytes >= 0 &&
         in.text(static_cast<size_t>(pathBytes), plugin.path) &&
         readParameters(in, parameterCount, plugin.parameters) && readState(in, stateBytes, plugin.state);
}

bool parseCurrent(FieldReader in, Chain& chain) {
  int32_t total = 0, version = 0, count = 0;
  in.magic();
  if (!in.little(total) || !in.little(version) || !in.little(count)) return false;
  for (int32_t i = 0; i < count && in.magic() == kPluginMagic; ++i) {
    if (!readPlugin(in, chain.emplace_back())) return false;
  }
  return true;
}

struct OldTables {
  std::array<int32_t, kTableEntries> slots{};     // by position
  std::array<int32_t, kTableEntries> programs{};  // by slot
  std::span<const uint8_t> marks;                 // by slot

  // The first position that names a slot; -1 when none does.
  int32_t positionOf(int32_t slot) const {
    const auto found = std::find(slots.begin(), slots.end(), slot);
    return found == slots.end() ? -1 : static_cast<int32_t>(found - slots.begin());
  }
};

bool readOldTables(FieldReader& in, OldTables& tables) {
  for (int32_t& slot : tables.slots) {
    if (!in.little(slot) || slot < -1 || slot >= kTableEntries) return false;
  }
  for (int32_t& program : tables.programs) {
    if (!in.little(program)) return false;
  }
  std::span<const uint8_t> skipped;
  int32_t entries = 0, folderBytes = 0, nameBytes = 0;
  if (!in.take(kTableEntries, skipped) || !in.little(entries) || entries != kTableEntries ||
      !in.take(kTableEntries, tables.marks)) {
    return false;
  }
  const bool marksFit =
      std::ranges::all_of(tables.marks, [](uint8_t mark) { return mark == 0 || mark == kSlotHolds; });
  return marksFit && in.little(folderBytes) && folderBytes == kFolderBytes && in.little(nameBytes) &&
         nameBytes == kNameBytes;
}

bool readOldPlugin(FieldReader& in, ChainPlugin& plugin) {
  std::string name;
  int32_t ignored = 0, parameterCount = 0, stateBytes = 0;
  if (!in.text(kFolderBytes, plugin.path) || !in.text(kNameBytes, name) || !in.little(ignored) ||
      !in.little(plugin.program) || !in.little(parameterCount)) {
    return false;
  }
  plugin.path += name;
  return readParameters(in, parameterCount, plugin.parameters) && in.little(stateBytes) &&
         readState(in, stateBytes, plugin.state);
}

bool parseOld(FieldReader in, Chain& chain) {
  OldTables tables;
  if (!readOldTables(in, tables)) return false;
  for (int32_t slot = 0; slot < kTableEntries; ++slot) {
    if (tables.marks[static_cast<size_t>(slot)] != kSlotHolds) continue;
    ChainPlugin plugin;
    if (!readOldPlugin(in, plugin)) return false;
    plugin.slot = slot;
    plugin.position = tables.positionOf(slot);
    plugin.recordedProgram = tables.programs[static_cast<size_t>(slot)];
    // A plug-in that no position shows could neither be heard nor be removed.
    if (plugin.position >= 0) chain.push_back(std::move(plugin));
  }
  return true;
}

// ---- Into the rack --------------------------------------------------------------------------------------

// A number that no program has may crash a plug-in; one without programs is told 0 all the same.
bool isProgramOf(const VstPlugin& plugin, int32_t program) {
  return program == 0 || (program > 0 && program < plugin.programCount());
}

void applyTo(VstPlugin& plugin, const ChainPlugin& stored) {
  if (isProgramOf(plugin, stored.program)) plugin.selectProgram(stored.program);
  const int count = std::min(plugin.parameterCount(), static_cast<int>(stored.parameters.size()));
  for (int i = 0; i < count; ++i) {
    const float value = stored.parameters[static_cast<size_t>(i)];
    if (std::isfinite(value)) plugin.setParameter(i, value);
  }
  if (!stored.state.empty()) plugin.setChunk(stored.state, false);
}

bool place(Rack& rack, const ChainPlugin& stored) {
  VstHost& host = rack.host();
  // A name alone would be looked for wherever the system keeps libraries.
  const std::string path = absolutePath(stored.path);
  const int slot = stored.slot < 0 ? host.open(path) : host.openAt(path, stored.slot);
  if (slot < 0) return false;
  applyTo(*host.plugin(slot), stored);  // before it is heard
  rack.remove(stored.position);         // the later of two records for one position counts
  rack.recordProgram(slot, stored.recordedProgram);
  rack.setSlotAt(stored.position, slot);
  rack.setMuted(stored.position, stored.muted);
  return true;
}

// ---- Writing --------------------------------------------------------------------------------------------

void writePlugin(FieldWriter& out, const Rack& rack, int position, ChainStates states) {
  const VstPlugin& plugin = *rack.pluginAt(position);
  // A copy: the bytes are the plug-in's own until its next call.
  std::vector<uint8_t> state;
  if (plugin.hasProgramChunks() && states == ChainStates::with) {
    const std::span<const uint8_t> own = plugin.chunk(false);
    state.assign(own.begin(), own.end());
  }
  const int parameterCount = plugin.parameterCount();
  const size_t pathBytes = plugin.path().size() + 1;
  out.text(kPluginMagic);
  out.little(static_cast<int32_t>(kPluginFieldBytes + pathBytes +
                                  sizeof(float) * static_cast<size_t>(parameterCount) + state.size()));
  out.little(position);
  out.little(rack.programOf(rack.slotAt(position)));
  out.little(rack.isMuted(position) ? 1 : 0);
  out.little(parameterCount);
  out.little(static_cast<int32_t>(pathBytes));
  out.little(static_cast<int32_t>(state.size()));
  out.text(plugin.path());
  out.zeros(1);
  for (int i = 0; i < parameterCount; ++i) out.little(plugin.parameter(i));
  out.bytes(state);
}

}  // namespace

ChainForm chainFormOf(std::span<const uint8_t> bytes) {
  FieldReader in(bytes);
  if (in.magic() != kChainMagic) return ChainForm::old;
  int32_t total = 0, version = kVersion;
  if (in.little(total)) in.little(version);
  return version == kVersion ? ChainForm::current : ChainForm::later;
}

bool parseChain(std::span<const uint8_t> bytes, ChainForm form, Chain& chain) {
  chain.clear();
  const bool sound = form == ChainForm::current ? parseCurrent(FieldReader(bytes), chain)
                                                : parseOld(FieldReader(bytes), chain);
  if (!sound) chain.clear();
  return sound;
}

ChainRestoration restoreChain(Rack& rack, const Chain& chain) {
  ChainRestoration restoration;
  rack.clear();
  for (const ChainPlugin& stored : chain) {
    if (isNetworkPath(stored.path)) {
      restoration.onNetwork.push_back(stored.path);
    } else if (!place(rack, stored)) {
      restoration.notLoaded.push_back(stored.path);
    }
  }
  for (int position = 0; position < rack.positionCount(); ++position) {
    const VstPlugin* plugin = rack.pluginAt(position);
    if (plugin != nullptr && plugin->hasEditor() && rack.editorWanted) rack.editorWanted(position);
  }
  return restoration;
}

std::vector<uint8_t> chainBytes(const Rack& rack, ChainStates states) {
  std::vector<int> positions;
  for (int position = 0; position < rack.positionCount(); ++position) {
    if (rack.pluginAt(position) != nullptr) positions.push_back(position);
  }
  FieldWriter out;
  out.text(kChainMagic);
  out.little(0);
  out.little(kVersion);
  out.little(static_cast<int32_t>(positions.size()));
  for (const int position : positions) writePlugin(out, rack, position, states);
  std::vector<uint8_t> bytes = out.content();
  const size_t total = bytes.size() - kTotalAt - sizeof(int32_t);
  if (total > static_cast<size_t>(std::numeric_limits<int32_t>::max())) return {};
  FieldWriter count;
  count.little(static_cast<int32_t>(total));
  std::ranges::copy(count.content(), bytes.begin() + kTotalAt);
  return bytes;
}

std::error_code saveChain(FileSystem& files, const Rack& rack, const std::string& path) {
  const std::vector<uint8_t> bytes = chainBytes(rack);
  if (bytes.empty()) return std::make_error_code(std::errc::file_too_large);
  return replaceFile(files, path, SyncToDisk::yes, bytes);
}

}  // namespace plumetta
