// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/graphics.h>
#include <wx/window.h>

#include "ui/theme.h"

namespace plumetta {

// A display beside the documents, painted through a buffer in the system's colours.
class LiveView : public wxWindow {
 public:
  // `name` is for those who can't see it.
  LiveView(wxWindow* parent, const wxString& name);

  bool AcceptsFocus() const override { return false; }

 protected:
  // The background is there already. However small the area is, even empty.
  virtual void paint(wxGraphicsContext& gc, const wxSize& size) = 0;

  // What is shown has changed.
  void redraw();

  // Other colours are there; everything is going to be painted.
  virtual void themeChanged() {}

  const Theme& theme() const { return theme_; }
  // A line of one logical pixel, at least one device pixel wide.
  double hairline() const;
  // The nearest place at which a device pixel begins.
  double snapped(double at) const;
  wxFont smallFont() const;

 private:
  void onPaint(wxPaintEvent&);
  void paintAll(wxGraphicsContext& gc);

  Theme theme_;
};

}  // namespace plumetta
