// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/brush.h>
#include <wx/graphics.h>
#include <wx/pen.h>
#include <wx/timer.h>
#include <wx/window.h>

#include <memory>
#include <optional>

#include "ui/wave_view.h"

namespace plumetta {

// One press of the mouse on something, until it is let go. Destroyed without `drop`, it has changed nothing.
class Drag {
 public:
  virtual ~Drag() = default;
  virtual void move(const wxPoint& at, bool constrained) = 0;  // constrained: Shift is held
  virtual void drop() = 0;
  virtual void cancel() = 0;
};

// A part of a document window: painted without flicker on whole device pixels, drawn again only where cursor
// or selection have moved, with drags that scroll at the window's sides and end by Escape.
class ViewWindow : public wxWindow {
 public:
  ViewWindow(wxWindow* parent, WaveView& view, long style = 0);

  // Cursor, selection, scroll position or zoom may have changed.
  virtual void follow();
  // What is heard has moved, to `view_.playFrame`: only the pixels that change are drawn again.
  void followPlayFrame();
  // True when there was a drag to cancel.
  bool cancelDrag();
  bool dragging() const { return drag_ != nullptr; }

 protected:
  virtual void paint(wxGraphicsContext& gc, const wxRect& area) = 0;
  // Zooms about the pointer or the cursor; scrolls with Shift, zooms amplitudes with Ctrl.
  virtual void onWheel(wxMouseEvent& event);
  // Which frames this window shows; nothing when it doesn't follow cursor and selection.
  virtual std::optional<FrameScale> ownScale() const { return view_.scale(); }
  // What cursor and selection draw beyond their own place, in pixels.
  virtual int reach() const { return FromDIP(6); }

  CPlumettaDoc& doc() const { return view_.doc; }
  const Theme& theme() const { return view_.theme; }
  double deviceScale() const { return GetContentScaleFactor(); }
  // The nearest place at which a device pixel begins.
  double snapped(double at) const;
  // A line of this many logical pixels, at least one device pixel wide.
  double hairline() const;
  wxFont smallFont() const;
  // The line at what is heard, if there is one, from the top of the area to its bottom.
  void paintPlayCursor(wxGraphicsContext& gc, const wxRect& area) const;
  // The whole pixels between two places, from the window's top to its bottom.
  wxRect columns(double from, double to) const;
  void refreshColumns(double from, double to);
  void startDrag(std::unique_ptr<Drag> drag);

  WaveView& view_;

 private:
  void onPaint(wxPaintEvent&);
  void onMotion(wxMouseEvent& event);
  void onLeftUp(wxMouseEvent& event);
  void onTimer(wxTimerEvent&);
  void endDrag();
  std::optional<double> playX() const;

  std::unique_ptr<Drag> drag_;
  wxTimer autoscroll_;
  ViewState shown_;
  std::optional<FrameScale> shownScale_;
  std::optional<double> shownPlayX_;
};

// Fills a rectangle without an outline.
void fillRect(wxGraphicsContext& gc, const wxColour& colour, double x, double y, double width, double height);
wxColour withAlpha(const wxColour& colour, unsigned char alpha);
wxString fromUtf8(const std::string& text);

}  // namespace plumetta
