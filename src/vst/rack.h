// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "core/block_processor.h"
#include "core/wave.h"
#include "vst/pin_buffers.h"
#include "vst/vst_host.h"

namespace plumetta {

// What became of adding a plug-in: its position, or the message that says why there is none.
struct RackAddition {
  int position = -1;
  std::string message;
};

// The rack's texts.
inline constexpr const char* kRackFull = "Rack full";
inline constexpr const char* kNoVstGui = "No VST GUI";

inline constexpr const char* kEmptyLine = "-----";
std::string unableToLoad(const std::string& path);

// An ordered chain of up to 256 plug-ins, with holes. Positions name host slots; what belongs to a plug-in
// goes by its slot. UI thread, but for what says otherwise.
class Rack final : public BlockProcessor, public ChainProcessor {
 public:
  static constexpr int kPositions = VstHost::kSlots;
  static constexpr int kOfflineBlockFrames = 2048;
  static constexpr int kBufferFrames = 4096;  // no block is longer

  explicit Rack(VstHost& host);
  Rack(const Rack&) = delete;
  Rack& operator=(const Rack&) = delete;

  VstHost& host() { return host_; }

  // ---- Positions and slots ------------------------------------------------------------------------------
  int positionCount() const { return kPositions; }
  // -1 for an empty position and one out of range. Any thread, as the next two.
  int slotAt(int position) const noexcept;
  // -1 too when the slot is muted.
  int activeSlotAt(int position) const noexcept;
  bool isMuted(int position) const noexcept;
  // Ignored for a position out of range.
  void setSlotAt(int position, int slot);
  // Takes effect at the next block; nothing for an empty position.
  void setMuted(int position, bool muted);
  // The program recorded for a slot: -1 when there is none.
  int programOf(int slot) const;
  void recordProgram(int slot, int program);
  // Null for an empty position.
  VstPlugin* pluginAt(int position) const;

  // ---- The chain ----------------------------------------------------------------------------------------
  // At the first empty position.
  RackAddition add(const std::string& path);
  // At a given one (0 when it is out of range), whose occupant goes first: ask before, see occupied().
  RackAddition addAt(int position, const std::string& path);
  bool occupied(int position) const { return slotAt(position) >= 0; }
  bool isEmpty() const;
  // Leaves a hole. False for an empty position.
  bool remove(int position);
  // What is at one position comes to the other, holes too. False when one is out of range.
  bool exchange(int first, int second);
  void clear();
  // The position's line in a list.
  std::string lineText(int position) const;
  // Of the active plug-ins.
  int64_t latencyFrames() const override;

  // ---- Programs and parameters --------------------------------------------------------------------------
  // False for an empty position or a program that isn't there.
  bool selectProgram(int position, int program);
  std::string programLine(int position, int program) const;
  std::vector<std::string> programLines(int position) const;
  // False for an empty position or a parameter that isn't there.
  bool setParameter(int position, int index, float value);
  // The plug-in's own text of the value, with its unit.
  std::string parameterText(int position, int index) const;

  // ---- Editors, whose windows are somebody else's ---------------------------------------------------------
  // Called when a plug-in with an editor has come to `position`: makes a window and opens the editor in it.
  std::function<void(int position)> editorWanted;
  // Called after an editor has been told to close: its window goes.
  std::function<void(int slot)> editorClosed;
  void closeEditor(int slot);
  void closeAllEditors();
  // What the position's line, mute state or plug-in show has changed.
  std::function<void(int position)> positionChanged;

  // ---- Audio --------------------------------------------------------------------------------------------
  void setSampleRate(int hz) override;
  void setPosition(double outputFrame) noexcept override;
  void setPlaying(bool playing) noexcept override;
  void process(float** channels, int channelCount, int frames) noexcept override;

  int activePlugins() const override;
  std::vector<std::string> takeFaultTexts() override;
  ChainResult applyTo(CWave& wave, AudioLock& lock, int64_t start, int64_t end,
                      const WaveProgress& progress) override;

  // One block of frames x channels interleaved samples, at most kBufferFrames frames, replaced by what the
  // chain makes of them but for channels whose flag is not set. False when a plug-in was given up or taken
  // away in it. One thread at a time for a pair of buffers; waits for plug-ins that process elsewhere.
  bool processInterleaved(PinBuffers& inputs, PinBuffers& outputs, float* samples, int frames, int channels,
                          const std::array<bool, kMaxChannels>& channelFlags) noexcept;

 private:
  struct SlotEntry {
    std::atomic<bool> muted{false};
    int program = -1;
  };

  bool runInPlace(int slot, int channelCount, int frames) noexcept;
  bool runOffline(int slot, PinBuffers& inputs, PinBuffers& outputs, int channels, int frames) noexcept;
  void notify(int position) const;

  VstHost& host_;
  std::array<std::atomic<int>, kPositions> positions_;
  std::array<SlotEntry, VstHost::kSlots> slots_;
  PinBuffers pins_;                   // of the audio thread
  std::mutex offline_;                // held while the chain is applied
  std::atomic<int> offlineUses_{0};   // playing goes without the chain meanwhile
  std::atomic<int> offlineSlot_{-1};  // the last one that went to work there
};

}  // namespace plumetta
