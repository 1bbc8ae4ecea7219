// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/native_parent.h"

#ifdef __WXGTK__
// Some functions of GTK, which the toolkit stands on; its headers are not needed for anything else.
extern "C" {
void gtk_widget_realize(GtkWidget* widget);
int gdk_window_ensure_native(GdkWindow* window);
struct _GdkDisplay* gdk_window_get_display(GdkWindow* window);
void gdk_display_sync(struct _GdkDisplay* display);
unsigned long gdk_x11_window_get_xid(GdkWindow* window);
}
#endif

namespace plumetta {

void* nativeParent(wxWindow& window) {
#ifdef __WXGTK__
  // While the window manager is still to say how wide its borders are, nothing is made of what is in a
  // window.
  gtk_widget_realize(window.m_wxwindow);
  GdkWindow* const own = window.GTKGetDrawingWindow();
  if (own == nullptr || gdk_window_ensure_native(own) == 0) return nullptr;
  // A plug-in has a connection of its own to the display, for which the window has to be there already.
  gdk_display_sync(gdk_window_get_display(own));
  return reinterpret_cast<void*>(gdk_x11_window_get_xid(own));
#else
  return window.GetHandle();
#endif
}

}  // namespace plumetta
