// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/crash_note.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstring>
#include <utility>

#include "platform/crash_note_file.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

constexpr std::array<int, 5> kCrashes = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};

thread_local const char* blamed = nullptr;
// Of the note; empty for none. Fixed, since the handler can't allocate.
char notePath[4096];
struct sigaction before[kCrashes.size()];

void put(int file, const char* text) {
  const ssize_t written = ::write(file, text, std::strlen(text));
  static_cast<void>(written);  // there is nobody left to be told
}

// Only what may be called in a signal handler.
extern "C" void leaveNote(int signal) {
  for (size_t i = 0; i < kCrashes.size(); ++i) sigaction(kCrashes[i], &before[i], nullptr);
  if (const char* name = std::exchange(blamed, nullptr)) {
    const int file = ::open(notePath, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    for (const int target : {file, STDERR_FILENO}) {
      if (target < 0) continue;
      if (target == STDERR_FILENO) put(target, "A plug-in has crashed: ");
      put(target, name);
      put(target, "\n");
    }
    if (file >= 0) ::close(file);
  }
  // A fault comes again by itself on return, and takes its usual course; what was sent has to be sent again.
  raise(signal);
}

}  // namespace

void keepCrashNotes(const std::string& folder) {
  const std::string path = joinPath(folder, kCrashNoteName);
  if (path.size() >= sizeof notePath) return;
  const bool installed = notePath[0] != '\0';
  std::memcpy(notePath, path.c_str(), path.size() + 1);
  if (installed) return;
  struct sigaction action {};
  action.sa_handler = leaveNote;
  action.sa_flags = SA_NODEFER | SA_ONSTACK;
  for (size_t i = 0; i < kCrashes.size(); ++i) sigaction(kCrashes[i], &action, &before[i]);
}

const char* CrashBlame::exchange(const char* name) noexcept { return std::exchange(blamed, name); }

}  // namespace plumetta
