// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>

#include "doc/command.h"
#include "support/memory_file_system.h"
#include "support/recording_prompter.h"
#include "support/waves.h"

namespace plumetta {

// A document that holds the counting wave, with everything around it that an application would own; its files
// are in memory.
struct LooseDocument {
  LooseDocument(int channels, int32_t frames) {
    doc.createNew(8000, channels, 32, 0, kFormatFloat);
    doc.wave().insertBuffer(*countingWave(channels, frames), 0);
  }

  MemoryFileSystem files;
  UndoFolder folder{files, "undo"};
  RecordingPrompter prompter;
  AudioLock lock;
  HistoryList history;
  EditSettings settings;
  std::shared_ptr<const CWave> clipboard;
  DocumentServices services{files, folder, lock, prompter, history, settings, clipboard};
  CPlumettaDoc doc{services};
};

// Runs a command with its first arguments given and the others as they are by themselves.
inline bool runCommandOf(CPlumettaDoc& doc, const char* id, const Arguments& given = {}) {
  const Command& command = *findCommand(id);
  Arguments arguments = fallbackArguments(command);
  std::copy(given.begin(), given.end(), arguments.begin());
  return runCommand(doc, command, std::move(arguments)) == CommandOutcome::done;
}

}  // namespace plumetta
