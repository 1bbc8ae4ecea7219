// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor_window.h"

#include <windows.h>

namespace plumetta {

void* openEditorWindow(void* parent, int width, int height) {
  return CreateWindowExA(0, "STATIC", "Test editor", WS_CHILD | WS_VISIBLE | SS_CENTER | SS_CENTERIMAGE, 0, 0,
                         width, height, static_cast<HWND>(parent), nullptr, nullptr, nullptr);
}

void closeEditorWindow(void* window) { DestroyWindow(static_cast<HWND>(window)); }

}  // namespace plumetta
