// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/lock_file.h"

#include <windows.h>

#include <utility>

#include "platform/windows/wide.h"

namespace plumetta {
namespace {

// Share mode 0: as long as the handle is open, nobody else opens the file, and the system closes the handle
// of a process that ends. The file itself stays behind then, as the sign that there is something to take
// over.
intptr_t openAlone(const std::string& path, DWORD disposition) {
  const HANDLE handle = CreateFileW(systemPath(path).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0,
                                    nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  return reinterpret_cast<intptr_t>(handle);
}

const intptr_t kNoHandle = reinterpret_cast<intptr_t>(INVALID_HANDLE_VALUE);

}  // namespace

std::optional<LockFile> LockFile::create(const std::string& path) {
  const intptr_t handle = openAlone(path, CREATE_ALWAYS);
  if (handle == kNoHandle) return std::nullopt;
  return LockFile(handle, path);
}

std::optional<LockFile> LockFile::takeOver(const std::string& path) {
  const intptr_t handle = openAlone(path, OPEN_EXISTING);
  if (handle == kNoHandle) return std::nullopt;
  return LockFile(handle, path);
}

LockFile::LockFile(LockFile&& other) noexcept
    : handle_(std::exchange(other.handle_, kNoHandle)), path_(std::move(other.path_)) {}

LockFile::~LockFile() {
  if (handle_ == kNoHandle) return;
  const auto handle = reinterpret_cast<HANDLE>(handle_);
  // Removed through the handle that holds it, so that nobody can take it in between.
  FILE_DISPOSITION_INFO removal{};
  removal.DeleteFile = TRUE;
  SetFileInformationByHandle(handle, FileDispositionInfo, &removal, sizeof removal);
  CloseHandle(handle);
}

uint64_t processId() { return GetCurrentProcessId(); }

}  // namespace plumetta
