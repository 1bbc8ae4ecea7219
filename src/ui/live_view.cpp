// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/live_view.h"

#include <wx/dcbuffer.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "ui/draw_at_once.h"
#include "ui/view_window.h"

namespace plumetta {

LiveView::LiveView(wxWindow* parent, const wxString& name)
    : wxWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxFULL_REPAINT_ON_RESIZE | wxBORDER_NONE,
               name),
      theme_(Theme::current()) {
  SetBackgroundStyle(wxBG_STYLE_PAINT);
  Bind(wxEVT_PAINT, &LiveView::onPaint, this);
  Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
    theme_ = Theme::current();
    themeChanged();
    Refresh(false);
    event.Skip();
  });
}

void LiveView::onPaint(wxPaintEvent&) {
  wxAutoBufferedPaintDC dc(this);
  const std::unique_ptr<wxGraphicsContext> gc(wxGraphicsContext::CreateFromUnknownDC(dc));
  if (gc) paintAll(*gc);
}

void LiveView::redraw() {
  drawAtOnce(*this, GetClientRect(), [this](wxGraphicsContext& gc) { paintAll(gc); });
}

void LiveView::paintAll(wxGraphicsContext& gc) {
  const wxSize size = GetClientSize();
  fillRect(gc, theme_.margin, 0, 0, size.x, size.y);
  paint(gc, size);
}

double LiveView::hairline() const {
  return std::max(std::round(FromDIP(1) * GetContentScaleFactor()), 1.0) / GetContentScaleFactor();
}

double LiveView::snapped(double at) const {
  return std::round(at * GetContentScaleFactor()) / GetContentScaleFactor();
}

wxFont LiveView::smallFont() const {
  wxFont font = GetFont();
  font.SetFractionalPointSize(font.GetFractionalPointSize() * 0.82);
  return font;
}

}  // namespace plumetta
