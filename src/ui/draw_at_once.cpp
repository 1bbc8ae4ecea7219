// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/draw_at_once.h"

#include <wx/dcclient.h>
#include <wx/utils.h>

#include <memory>

namespace plumetta {
namespace {

// GTK's parents take part in each painting; only on X11 does it draw outside of one.
bool canDrawAtOnce() {
#ifdef __WXGTK__
  static const bool onX11 = wxGetDisplayInfo().type == wxDisplayX11;
  return onX11;
#else
  return false;
#endif
}

}  // namespace

void drawAtOnce(wxWindow& window, const wxRect& part, const std::function<void(wxGraphicsContext&)>& paint) {
  if (part.IsEmpty()) return;
  if (!canDrawAtOnce() || window.IsFrozen()) {
    window.RefreshRect(part, false);
    return;
  }
  if (!window.IsShownOnScreen()) return;  // its ground belongs to another, and it is painted when it comes
  wxClientDC dc(&window);
  const std::unique_ptr<wxGraphicsContext> gc(wxGraphicsContext::Create(dc));
  if (!gc) return;
  gc->Clip(part.x, part.y, part.width, part.height);
  gc->BeginLayer(1);  // so that nothing is seen before it is complete
  paint(*gc);
  gc->EndLayer();
}

}  // namespace plumetta
