// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/audio_lock.h"
#include "core/block_processor.h"
#include "core/prompter.h"
#include "core/system_clipboard.h"
#include "core/undo_folder.h"
#include "core/wave.h"
#include "platform/file_system.h"

namespace plumetta {

// The names of completed commands, of all documents together, the newest last.
class HistoryList {
 public:
  void add(std::string name) {
    names_.push_back(std::move(name));
    if (changed) changed();
  }
  const std::vector<std::string>& names() const { return names_; }

  std::function<void()> changed;  // called after each addition

 private:
  std::vector<std::string> names_;
};

// The settings that editing commands read, as they stand at this moment.
struct EditSettings {
  bool undoInRam = true;
  bool pasteReplace = true;
  bool keepForeignChunks = false;  // of WAV files that are opened
};

// What all documents of the application share; owned by the application, which outlives them.
struct DocumentServices {
  FileSystem& files;
  UndoFolder& undoFolder;
  AudioLock& audioLock;
  Prompter& prompter;
  HistoryList& history;
  EditSettings& settings;
  std::shared_ptr<const CWave>& clipboard;     // null until the first copy or cut; replaced, never changed
  SystemClipboard* systemClipboard = nullptr;  // null where there is none
  ChainProcessor* chain = nullptr;             // the rack; null where there is none
};

}  // namespace plumetta
