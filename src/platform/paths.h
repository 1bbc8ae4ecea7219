// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace plumetta {

// Path helpers over UTF-8 strings; both separators are understood on Windows, '/' alone elsewhere.

bool isPathSeparator(char c);
// The folder of the running executable.
std::string executableFolder();
// The person's own configuration folder for the editor (not created).
std::string userConfigFolder();
// The person's home folder, where file dialogs begin.
std::string personalFolder();
// An absolute path that means the same file whatever the current folder becomes.
std::string absolutePath(const std::string& path);
// The part behind the last separator.
std::string fileNameOf(const std::string& path);
// The part before the last separator: "." when there is none, the root for a file in the root.
std::string folderOf(const std::string& path);
std::string joinPath(const std::string& folder, const std::string& name);
// Lower case, without the dot; empty when the name has none.
std::string extensionOf(const std::string& path);

// Where settings, lists, undo files and recordings live: `overridden` when not empty, else the executable's
// folder when it is writable or holds "plumetta.cfg" (a portable copy), else the user's own folder.
std::string programFolder(const std::string& overridden);

}  // namespace plumetta
