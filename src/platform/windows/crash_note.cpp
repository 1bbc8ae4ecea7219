// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/crash_note.h"

#include <windows.h>

#include <csignal>
#include <cstring>

#include "platform/crash_note_file.h"
#include "platform/paths.h"
#include "platform/windows/wide.h"

namespace plumetta {
namespace {

// The compiler's own thread-local variables would be allocated at their first use in a thread.
const DWORD blamed = TlsAlloc();
// Of the note; empty for none. Fixed, since the filter shouldn't allocate.
wchar_t notePath[4096];
LPTOP_LEVEL_EXCEPTION_FILTER before = nullptr;

void put(HANDLE file, const char* text) {
  DWORD written = 0;
  WriteFile(file, text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
}

void leaveNote() {
  const auto* name = static_cast<const char*>(TlsGetValue(blamed));
  if (name == nullptr) return;
  TlsSetValue(blamed, nullptr);
  const HANDLE file = CreateFileW(notePath, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file != INVALID_HANDLE_VALUE) {
    put(file, name);
    put(file, "\n");
    CloseHandle(file);
  }
  const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
  put(console, "A plug-in has crashed: ");
  put(console, name);
  put(console, "\n");
}

LONG WINAPI onException(EXCEPTION_POINTERS* exception) {
  leaveNote();
  return before != nullptr ? before(exception) : EXCEPTION_CONTINUE_SEARCH;
}

// After this, abort() ends the process.
void onAbort(int) { leaveNote(); }

}  // namespace

void keepCrashNotes(const std::string& folder) {
  const std::wstring path = systemPath(joinPath(folder, kCrashNoteName));
  if (path.size() >= std::size(notePath)) return;
  const bool installed = notePath[0] != L'\0';
  std::wmemcpy(notePath, path.c_str(), path.size() + 1);
  if (installed) return;
  before = SetUnhandledExceptionFilter(onException);
  std::signal(SIGABRT, onAbort);
}

const char* CrashBlame::exchange(const char* name) noexcept {
  // Reading resets the thread's last error, which the plug-in's caller may still want.
  const DWORD error = GetLastError();
  auto* previous = static_cast<const char*>(TlsGetValue(blamed));
  TlsSetValue(blamed, const_cast<char*>(name));
  SetLastError(error);
  return previous;
}

}  // namespace plumetta
