// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/shared_library.h"
#include "vst/aeffect.h"

namespace plumetta {

// A plug-in's channels: so many are backed by memory of their own, and so many are taken seriously.
inline constexpr int kBackedPins = 64;
inline constexpr int kMostPins = 256;
// More parameters or programs than this are nobody's; a plug-in that claims them is taken at this number.
inline constexpr int kMostParameters = 1 << 16;

// One loaded plug-in with its description. Every call on one that isn't loaded gives 0, 0.0, false or "" and
// calls nothing. UI thread, but for what says otherwise. Calls of the plug-in's own code on the UI thread are
// not guarded against one that never comes back.
class VstPlugin {
 public:
  VstPlugin();
  // Closes it.
  ~VstPlugin() { close(); }
  VstPlugin(const VstPlugin&) = delete;
  VstPlugin& operator=(const VstPlugin&) = delete;

  // Loads the library at `path` (absolute) and asks its entry point for the effect: 0, or -1 with nothing
  // kept. Makes the library's folder the process's current one.
  int load(const std::string& path);
  // Loads it for a look alone: opened and described, neither resumed nor told of rates; the caller closes.
  int probe(const std::string& path);
  // Tells the plug-in to close, where it is open, and unloads the library.
  void close();

  bool loaded() const { return effect_ != nullptr; }
  AEffect* effect() const { return effect_; }
  const std::string& path() const { return path_; }
  // Of the library, with the separator at its end.
  const std::string& directory() const { return directory_; }
  // The part of the path behind its last separator.
  std::string fileName() const;

  // ---- Calls of the plug-in ---------------------------------------------------------------------------
  intptr_t dispatch(int32_t opcode, int32_t index = 0, intptr_t value = 0, void* pointer = nullptr,
                    float number = 0.0f) const;
  // The text that an opcode asks for, at most `mostBytes` of it, as UTF-8: what isn't is taken for Latin-1.
  std::string text(int32_t opcode, size_t mostBytes, int32_t index = 0, intptr_t value = 0) const;
  float parameter(int index) const;
  void setParameter(int index, float value) const;
  int parameterCount() const;
  int programCount() const;
  int inputCount() const;   // 0..kMostPins
  int outputCount() const;  // 0..kMostPins
  // Frames by which sound comes late, at present: some know it only once sound has come.
  int32_t initialDelay() const { return loaded() ? effect_->initialDelay : 0; }
  int32_t uniqueId() const { return loaded() ? effect_->uniqueID : 0; }
  bool hasEditor() const { return hasFlag(effFlagsHasEditor); }
  bool canReplace() const { return hasFlag(effFlagsCanReplacing); }
  bool hasProgramChunks() const { return hasFlag(effFlagsProgramChunks); }
  bool isSynth() const { return hasFlag(effFlagsIsSynth); }

  void selectProgram(int program) const { dispatch(effSetProgram, 0, program); }
  std::string programName() const;             // of the selected one
  std::string programName(int program) const;  // of any
  std::string parameterName(int index) const;
  std::string parameterDisplay(int index) const;
  std::string parameterLabel(int index) const;

  // The plug-in's opaque state, of the selected program or of the whole bank; the bytes are the plug-in's and
  // good until its next call. Empty when it keeps none.
  std::span<const uint8_t> chunk(bool ofProgram) const;
  // Copies `data` into the chunk buffer, which lives as long as the plug-in is open, and hands it over.
  void setChunk(std::span<const uint8_t> data, bool ofProgram);

  // ---- The description ----------------------------------------------------------------------------------
  void readInfo();
  const std::string& effectName() const { return effectName_; }
  const std::string& vendorName() const { return vendorName_; }
  const std::string& productName() const { return productName_; }
  // What messages call it: the effect's name, else the file's.
  std::string displayName() const;
  int32_t category() const { return category_; }
  int32_t vstVersion() const { return vstVersion_; }
  int32_t vendorVersion() const { return vendorVersion_; }

  // ---- Audio --------------------------------------------------------------------------------------------
  // Each array has kMostPins valid pointers to `frames` floats, the same ones for both or others. Does
  // nothing for a plug-in that can't replace. Audio thread; never allocates, never waits.
  void processReplacing(float** inputs, float** outputs, int frames) noexcept;
  // Hands what waits in the queue to the plug-in, and empties it. Audio thread, as the one below.
  void flushMidiQueue() noexcept;
  // False when the queue is full.
  bool queueMidi(const VstMidiEvent& event) noexcept;

  // Set by the plug-in through the host callback, from any thread.
  std::atomic<bool> wantsMidi{false};
  std::atomic<bool> needsIdle{false};
  // effEditOpen has answered a value above 0.
  bool editorOpen = false;

  VstSpeakerArrangement& speakerArrangement() { return speakerArrangement_; }

 private:
  bool hasFlag(int32_t flag) const { return loaded() && (effect_->flags & flag) != 0; }
  AEffect* callEntry();

  SharedLibrary library_;
  std::string path_;
  std::string directory_;
  std::string effectName_, productName_, vendorName_;
  std::string noteName_;  // what a crash is put down to
  std::array<VstMidiEvent, kMostMidiEvents> midiQueue_{};
  VstEvents midiEvents_{};
  int32_t pendingMidi_ = 0;
  bool infoValid_ = false;
  bool probing_ = false;
  int32_t category_ = 0, vstVersion_ = 0, vendorVersion_ = 0;
  AEffect* effect_ = nullptr;
  VstSpeakerArrangement speakerArrangement_{};
  std::vector<uint8_t> chunk_;
};

}  // namespace plumetta
