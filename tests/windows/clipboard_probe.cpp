// SPDX-License-Identifier: GPL-3.0-or-later
// A second program at the system clipboard: `clipboard_probe read FILE` writes the wave that lies there into
// a file, `clipboard_probe write FILE` puts a file's bytes there as the standard wave format.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

namespace {

// Another program may hold the clipboard for a moment.
bool openClipboard() {
  for (int attempt = 0; attempt < 50; ++attempt) {
    if (OpenClipboard(nullptr)) return true;
    Sleep(100);
  }
  return false;
}

int readWave(const char* path) {
  const HANDLE block = GetClipboardData(CF_WAVE);
  const void* bytes = block != nullptr ? GlobalLock(block) : nullptr;
  if (bytes == nullptr) return 1;
  std::ofstream out(path, std::ios::binary);
  out.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(GlobalSize(block)));
  GlobalUnlock(block);
  return out.good() ? 0 : 1;
}

int writeWave(const char* path) {
  std::ifstream in(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
  if (bytes.empty() || block == nullptr) return 1;
  std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
  GlobalUnlock(block);
  EmptyClipboard();
  return SetClipboardData(CF_WAVE, block) != nullptr ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 || !openClipboard()) return 2;
  const int status = std::strcmp(argv[1], "read") == 0 ? readWave(argv[2]) : writeWave(argv[2]);
  CloseClipboard();
  std::printf("%s: %d\n", argv[1], status);
  return status;
}
