// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/application.h"
#include "cli/arguments.h"
#include "cli/call.h"
#include "cli/terminal_prompter.h"

namespace plumetta {

// What a command about one file works on: an application of its own in which the file is open, with its
// selection.
struct OpenedFile {
  OpenedFile(const CallOptions& options, const std::string& file, const SelectionOption& selection)
      : prompter(options.answer, options.quiet), app(prompter, nativeFileSystem(), options.home) {
    FileOutcome outcome{};
    doc = app.openDocument(file, outcome);
    if (doc != nullptr) selection.apply(*doc);
  }

  TerminalPrompter prompter;
  Application app;
  CPlumettaDoc* doc;  // null, once a message has told why, when it can't be opened
};

}  // namespace plumetta
