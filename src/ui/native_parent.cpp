// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/native_parent.h"

#ifdef __WXGTK__
// Two functions of GDK, which the toolkit stands on; its headers are not needed for anything else.
extern "C" {
int gdk_window_ensure_native(GdkWindow* window);
unsigned long gdk_x11_window_get_xid(GdkWindow* window);
}
#endif

namespace plumetta {

void* nativeParent(wxWindow& window) {
#ifdef __WXGTK__
  GdkWindow* const own = window.GTKGetDrawingWindow();
  if (own == nullptr || gdk_window_ensure_native(own) == 0) return nullptr;
  return reinterpret_cast<void*>(gdk_x11_window_get_xid(own));
#else
  return window.GetHandle();
#endif
}

}  // namespace plumetta
