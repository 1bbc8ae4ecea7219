// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/window.h>

namespace plumetta {

// The system's own number of a window that is shown, for code that draws in it by itself: HWND, or the number
// of an X11 window. Null where the system has none (another display system than X11).
void* nativeParent(wxWindow& window);

}  // namespace plumetta
