// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file_system.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "platform/windows/access.h"
#include "platform/windows/wide.h"

namespace plumetta {
namespace {

// One call moves at most this much; the system counts a transfer's bytes in 32 bits.
constexpr size_t kLargestTransfer = size_t{1} << 30;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::error_code check(BOOL done) { return done ? std::error_code{} : lastSystemError(); }

DWORD attributesOf(const std::wstring& path) { return GetFileAttributesW(path.c_str()); }

bool has(DWORD attributes, DWORD wanted) {
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & wanted) != 0;
}

bool isAbsent(DWORD code) { return code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND; }

// Names like NUL and \\.\pipe\name, which the system itself spells in full this way. They are told by name
// because opening a pipe in order to ask would use it up.
bool isDevice(const std::wstring& path) {
  const bool drive = path.size() > 6 && path[5] == L':' && path[6] == L'\\';
  return path.starts_with(L"\\\\.\\") && !drive;
}

class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle) {}
  ~Handle() { close(); }
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  bool valid() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle_; }
  std::error_code close() {
    if (!valid()) return {};
    return check(CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE)));
  }

 private:
  HANDLE handle_;
};

Handle openExisting(const std::wstring& path, DWORD access, DWORD flags) {
  return Handle(CreateFileW(path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING, flags, nullptr));
}

class WindowsFile : public File {
 public:
  WindowsFile(Handle handle, uint64_t size) : handle_(std::move(handle)), size_(size) {}

  size_t read(void* destination, size_t bytes, std::error_code& error) override {
    size_t done = 0;
    while (done < bytes) {
      DWORD part = 0;
      if (!ReadFile(handle_.get(), static_cast<char*>(destination) + done, portion(bytes - done), &part,
                    nullptr)) {
        error = lastSystemError();
        break;
      }
      if (part == 0) break;
      done += part;
    }
    return done;
  }

  std::error_code write(const void* source, size_t bytes) override {
    size_t done = 0;
    while (done < bytes) {
      DWORD part = 0;
      if (!WriteFile(handle_.get(), static_cast<const char*>(source) + done, portion(bytes - done), &part,
                     nullptr)) {
        return lastSystemError();
      }
      if (part == 0) return systemError(ERROR_DISK_FULL);
      done += part;
    }
    return {};
  }

  std::error_code seek(uint64_t offset) override {
    LARGE_INTEGER target{};
    target.QuadPart = static_cast<LONGLONG>(offset);
    return check(SetFilePointerEx(handle_.get(), target, nullptr, FILE_BEGIN));
  }

  uint64_t size() const override { return size_; }
  std::error_code sync() override { return check(FlushFileBuffers(handle_.get())); }
  std::error_code close() override { return handle_.close(); }

 private:
  static DWORD portion(size_t bytes) { return static_cast<DWORD>(std::min(bytes, kLargestTransfer)); }

  Handle handle_;
  uint64_t size_;
};

std::unique_ptr<File> opened(Handle handle, std::error_code& error) {
  if (!handle.valid()) {
    error = lastSystemError();
    return nullptr;
  }
  error.clear();
  return std::make_unique<WindowsFile>(std::move(handle), 0);
}

std::error_code makeFolder(const std::wstring& path) {
  if (CreateDirectoryW(path.c_str(), nullptr)) return {};
  const DWORD code = GetLastError();
  // Roots are refused with other codes than folders that exist; what counts is that it is there.
  const DWORD attributes = attributesOf(path);
  if (has(attributes, FILE_ATTRIBUTE_DIRECTORY)) return {};
  if (attributes != INVALID_FILE_ATTRIBUTES) return std::make_error_code(std::errc::not_a_directory);
  const size_t separator = path.find_last_of(L'\\');
  if (code != ERROR_PATH_NOT_FOUND || separator == std::wstring::npos) return systemError(code);
  if (const auto error = makeFolder(path.substr(0, separator))) return error;
  return check(CreateDirectoryW(path.c_str(), nullptr));
}

class WindowsFileSystem : public FileSystem {
 public:
  std::unique_ptr<File> openForReading(const std::string& path, std::error_code& error) override {
    const std::wstring name = systemPath(path);
    const FileKind what = kindOf(name);
    if (what == FileKind::folder || what == FileKind::special) {
      error = std::make_error_code(what == FileKind::folder ? std::errc::is_a_directory
                                                            : std::errc::invalid_seek);
      return nullptr;
    }
    Handle handle = openExisting(name, GENERIC_READ, FILE_FLAG_SEQUENTIAL_SCAN);
    LARGE_INTEGER size{};
    if (!handle.valid() || !GetFileSizeEx(handle.get(), &size)) {
      error = lastSystemError();
      return nullptr;
    }
    error.clear();
    return std::make_unique<WindowsFile>(std::move(handle), static_cast<uint64_t>(size.QuadPart));
  }

  std::unique_ptr<File> createNew(const std::string& path, std::error_code& error) override {
    const auto descriptor = ownerOnlyDescriptor();
    SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor.get(), FALSE};
    return opened(Handle(CreateFileW(systemPath(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                     &attributes, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)),
                  error);
  }

  std::unique_ptr<File> openSpecialForWriting(const std::string& path, std::error_code& error) override {
    return opened(openExisting(systemPath(path), GENERIC_WRITE, 0), error);
  }

  FileKind kind(const std::string& path) override { return kindOf(systemPath(path)); }

  std::error_code checkWritable(const std::string& path) override {
    const std::wstring name = systemPath(path);
    if (isDevice(name)) return {};
    const DWORD attributes = attributesOf(name);
    if (attributes == INVALID_FILE_ATTRIBUTES) return lastSystemError();
    // A folder's own read-only mark says nothing about what may be put into it.
    if (has(attributes, FILE_ATTRIBUTE_DIRECTORY)) {
      return check(openExisting(name, FILE_ADD_FILE, FILE_FLAG_BACKUP_SEMANTICS).valid());
    }
    if (has(attributes, FILE_ATTRIBUTE_READONLY)) return systemError(ERROR_ACCESS_DENIED);
    return check(openExisting(name, GENERIC_WRITE, 0).valid());
  }

  std::error_code adoptAccess(const std::string& path, const std::string& model) override {
    return copyAccess(systemPath(path), systemPath(model));
  }

  std::error_code replace(const std::string& from, const std::string& to, bool syncFolder) override {
    const std::wstring target = systemPath(to);
    // Not every implementation of the system's call looks at the mark.
    if (has(attributesOf(target), FILE_ATTRIBUTE_READONLY)) return systemError(ERROR_ACCESS_DENIED);
    const DWORD flags = MOVEFILE_REPLACE_EXISTING | (syncFolder ? MOVEFILE_WRITE_THROUGH : 0);
    return check(MoveFileExW(systemPath(from).c_str(), target.c_str(), flags));
  }

  std::error_code remove(const std::string& path) override {
    const std::wstring name = systemPath(path);
    const bool folder = has(attributesOf(name), FILE_ATTRIBUTE_DIRECTORY);
    if (folder ? RemoveDirectoryW(name.c_str()) : DeleteFileW(name.c_str())) return {};
    const DWORD code = GetLastError();
    return isAbsent(code) ? std::error_code{} : systemError(code);
  }

  std::error_code makeFolders(const std::string& path) override {
    std::wstring name = systemPath(path);
    // A drive's root keeps its separator: without it, it would mean the drive's current folder.
    while (name.size() > 3 && name.back() == L'\\') name.pop_back();
    return makeFolder(name);
  }

  std::string resolveLinks(const std::string& path) override {
    const std::wstring name = systemPath(path);
    if (!has(attributesOf(name), FILE_ATTRIBUTE_REPARSE_POINT)) return path;
    const Handle target = openExisting(name, 0, FILE_FLAG_BACKUP_SEMANTICS);
    if (!target.valid()) return path;
    const std::wstring final = finalPath(target.get());
    return final.empty() ? path : narrow(final);
  }

  std::vector<std::string> list(const std::string& folder) override {
    std::vector<std::string> names;
    WIN32_FIND_DATAW entry{};
    const HANDLE search = FindFirstFileExW(systemPath(folder + "\\*").c_str(), FindExInfoBasic, &entry,
                                           FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
      const std::wstring_view name = entry.cFileName;
      if (name != L"." && name != L"..") names.push_back(narrow(name));
    } while (FindNextFileW(search, &entry));
    FindClose(search);
    return names;
  }

 private:
  static FileKind kindOf(const std::wstring& name) {
    if (isDevice(name)) return FileKind::special;
    const DWORD attributes = attributesOf(name);
    if (attributes == INVALID_FILE_ATTRIBUTES) return FileKind::missing;
    return has(attributes, FILE_ATTRIBUTE_DIRECTORY) ? FileKind::folder : FileKind::regular;
  }
};

}  // namespace

FileSystem& nativeFileSystem() {
  static WindowsFileSystem files;
  return files;
}

}  // namespace plumetta
