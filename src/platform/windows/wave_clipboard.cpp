// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/wave_clipboard.h"

#include <windows.h>

namespace plumetta {
namespace {

// Another program may hold the clipboard for a moment.
constexpr int kAttempts = 10;
constexpr DWORD kPauseMs = 20;

bool openClipboard() {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (OpenClipboard(nullptr)) return true;
    Sleep(kPauseMs);
  }
  return false;
}

std::optional<std::string> lockedBytes(HANDLE block) {
  if (block == nullptr) return std::nullopt;
  const void* bytes = GlobalLock(block);
  if (bytes == nullptr) return std::nullopt;
  std::string image(static_cast<const char*>(bytes), GlobalSize(block));
  GlobalUnlock(block);
  return image;
}

}  // namespace

std::optional<std::string> systemWaveImage() {
  if (!IsClipboardFormatAvailable(CF_WAVE) || !openClipboard()) return std::nullopt;
  auto image = lockedBytes(GetClipboardData(CF_WAVE));
  CloseClipboard();
  return image;
}

}  // namespace plumetta
