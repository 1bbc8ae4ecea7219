// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "vst/aeffect.h"
#include "vst/vst_plugin.h"

namespace plumetta {

// What a plug-in did wrong while it processed.
struct PluginFault {
  enum Kind {
    hangs,       // it has not come back for two seconds, and is bypassed for good
    notANumber,  // it has made samples that are no numbers, which were silenced; told once a plug-in
  };
  int slot;
  std::string name;
  Kind kind;

  // For a person.
  std::string text() const;
};

// The one host of the process: what every plug-in hears of time, rate and host, and the table of those that
// are loaded. A plug-in is known by its slot. UI thread, but for what says otherwise.
class VstHost {
 public:
  static constexpr int kSlots = 256;

  // Throws std::logic_error when there is a host already.
  VstHost();
  // Closes all plug-ins.
  ~VstHost();
  VstHost(const VstHost&) = delete;
  VstHost& operator=(const VstHost&) = delete;

  // Null when there is none. Any thread.
  static VstHost* current() noexcept;

  // ---- Plug-ins -----------------------------------------------------------------------------------------
  // The slot, or -1: not loadable, occupied, out of range, no free slot. `path` is absolute.
  int open(const std::string& path);
  int openAt(const std::string& path, int slot);
  // Waits at most two seconds for a block that is being processed; a plug-in that is still busy then is
  // abandoned with its library. Its editor has to be closed before.
  void close(int slot);
  void closeAll();
  // Null for a free slot and one out of range. Any thread; the plug-in stays as long as nobody closes it.
  VstPlugin* plugin(int slot) const noexcept;
  // -1 when no slot holds it. Any thread.
  int slotOf(const AEffect* effect) const noexcept;
  // A plug-in has been given up: a thread may be in it for ever, so that whatever that reaches has to stay.
  bool hasAbandoned() const noexcept { return abandoned_ > 0; }
  // How many so far.
  int abandonedPlugins() const noexcept { return abandoned_; }

  // ---- What plug-ins hear -------------------------------------------------------------------------------
  // Any thread may ask for these.
  VstTimeInfo& timeInfo() noexcept { return timeInfo_; }
  float sampleRate() noexcept;
  double tempo() noexcept;
  int blockSize() const noexcept { return blockSize_; }
  const std::string& product() const { return product_; }
  const std::string& vendor() const { return vendor_; }

  // Sent to every plug-in, when it is another one.
  void setSampleRate(float hz);
  void setBlockSize(int frames);
  // Ignored unless 0 < bpm < 500.
  void setTempo(float bpm);
  void setHostStrings(const std::string& product, const std::string& vendor);
  // Audio thread; none of these waits.
  void setTransportPlaying(bool playing) noexcept;
  void setTransportChanged(bool changed) noexcept;
  void setPosition(double sample) noexcept;

  // ---- Editors ------------------------------------------------------------------------------------------
  // Keeps editors drawn and gives idle time to those that want it. Several times a second.
  void idle();
  int parameterCount(int slot) const;
  // What effEditGetRect answers; 0 for an empty slot. The rectangle is the plug-in's, null when it has none.
  intptr_t editorRectangle(int slot, ERect*& rectangle);
  // What effEditOpen answers. `parent` is the system's window: HWND, or the number of an X11 window.
  intptr_t openEditor(int slot, void* parent);
  // Does nothing when no editor is open.
  void closeEditor(int slot);

  // ---- Processing ---------------------------------------------------------------------------------------
  // Between these two the plug-in stays, and nobody else processes with it. Null when the slot is empty, is
  // being closed, has been given up or is processing elsewhere. Audio thread; neither allocates nor waits.
  VstPlugin* beginProcessing(int slot) noexcept;
  void endProcessing(int slot) noexcept;
  // Like beginProcessing, but waits while it processes elsewhere. Not for the audio thread.
  VstPlugin* waitToProcess(int slot) noexcept;
  // Notes that samples were silenced. Audio thread.
  void noteNotANumber(int slot) noexcept;
  // Bypasses for good what has been in one call for two seconds. Several times a second while there is sound;
  // any thread, as the next two.
  void watchForHangs();
  bool isGivenUp(int slot) const noexcept;
  // Faults that were not told yet; watches for hangs too.
  std::vector<PluginFault> takeFaults();

 private:
  // What may happen to a slot from two threads at once.
  struct Gate {
    std::atomic<unsigned> state{0};
    std::atomic<unsigned> turn{0};  // counts processing calls
    std::atomic<bool> notANumber{false};
    bool notANumberTold = false;
    bool hangTold = false;
    unsigned seenTurn = 0;
    std::chrono::steady_clock::time_point seenAt{};
  };

  int firstFreeSlot() const;
  bool waitUntilIdle(const Gate& gate) const;
  void giveUp(int slot) noexcept;
  void watchForHang(int slot);
  template <class Call>
  void forEachPlugin(Call call);

  VstTimeInfo timeInfo_{};  // first, so that a pointer to the host is one to it
  std::atomic<int> blockSize_{1024};
  std::string product_ = "Host product string";
  std::string vendor_ = "Host vendor string";
  std::array<std::unique_ptr<VstPlugin>, kSlots> owned_;
  std::array<std::atomic<VstPlugin*>, kSlots> table_{};
  std::array<std::atomic<AEffect*>, kSlots> effects_{};
  std::array<Gate, kSlots> gates_;
  std::mutex watch_;                 // over what the gates remember of being watched, and the faults
  std::vector<PluginFault> faults_;  // of plug-ins that have gone
  std::atomic<int> abandoned_{0};
  bool lastPlaying_ = false;  // audio thread
};

// What plug-ins call: those in slots the first, those that are only looked at the second. Any thread.
intptr_t HostCallback(AEffect* effect, int32_t opcode, int32_t index, intptr_t value, void* pointer,
                      float number);
intptr_t ScanHostCallback(AEffect* effect, int32_t opcode, int32_t index, intptr_t value, void* pointer,
                          float number);

}  // namespace plumetta
