// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/graphics.h>
#include <wx/menu.h>

#include <functional>
#include <memory>
#include <optional>

#include "doc/view_geometry.h"
#include "ui/view_window.h"

namespace plumetta {

// The volume envelope over the lanes: its curves and points, and how they are edited.
class EnvelopeLayer {
 public:
  // `lanes` tells where the lanes are at this moment; `unit` is one logical pixel of design.
  EnvelopeLayer(WaveView& view, std::function<LaneLayout()> lanes, double unit)
      : view_(view), lanes_(std::move(lanes)), unit_(unit) {}

  void paint(wxGraphicsContext& gc, int left, int right) const;

  struct Hit {
    int channel;
    std::optional<int> point;  // none: the curve between two points
  };
  std::optional<Hit> hitAt(const wxPoint& at) const;
  // A point is moved; on the curve a new one is made first. Null when there is no room for one.
  std::unique_ptr<Drag> beginDrag(const Hit& hit, const wxPoint& at);
  // Items for what is under the pointer, bound to the menu itself; false when there is nothing.
  bool addMenuItems(wxMenu& menu, const wxPoint& at);

 private:
  EnvelopeScale laneScale(int channel) const;
  double curveY(int channel, double x) const;
  void paintCurve(wxGraphicsContext& gc, int channel, int left, int right) const;
  void paintPoints(wxGraphicsContext& gc, int channel, int left, int right) const;
  void addPointItems(wxMenu& menu, int channel, int index);

  WaveView& view_;
  std::function<LaneLayout()> lanes_;
  double unit_;
};

}  // namespace plumetta
