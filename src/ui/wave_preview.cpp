// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wave_preview.h"

#include <algorithm>
#include <cmath>

#include "doc/view_geometry.h"
#include "ui/view_window.h"

namespace plumetta {

WavePreview::WavePreview(wxWindow* parent, const CWave& wave) : LiveView(parent, "Preview"), wave_(wave) {
  SetMinSize(FromDIP(wxSize(420, 150)));
}

void WavePreview::show(const wxString& text) {
  peaks_.rebuild(wave_);
  filled_ = true;
  text_ = text;
  Refresh(false);
}

void WavePreview::clear(const wxString& text) {
  filled_ = false;
  text_ = text;
  Refresh(false);
}

void WavePreview::paint(wxGraphicsContext& gc, const wxSize& size) {
  gc.SetFont(smallFont(), theme().textQuiet);
  double width = 0, textHeight = 0;
  gc.GetTextExtent("0", &width, &textHeight);
  const int lineHeight = static_cast<int>(std::ceil(textHeight)) + FromDIP(6);
  const LaneLayout lanes{filled_ ? wave_.channels() : 1, size.y - lineHeight, FromDIP(1)};
  for (int channel = 0; channel < lanes.lanes; ++channel) {
    const wxSize lane(size.x, lanes.laneHeight(channel));
    const int top = lanes.top(channel);
    fillRect(gc, theme().lane, 0, top, lane.x, lane.y);
    fillRect(gc, theme().zero, 0, snapped(top + lane.y / 2.0), lane.x, hairline());
    if (filled_ && wave_.frames() > 0) paintChannel(gc, channel, top, lane);
  }
  gc.DrawText(text_, FromDIP(6), size.y - lineHeight + FromDIP(3));
}

void WavePreview::paintChannel(wxGraphicsContext& gc, int channel, double top, const wxSize& lane) {
  const double columnWidth = 1 / GetContentScaleFactor();
  const FrameScale scale = fitScale(wave_.frames(), lane.x);
  columns_.resize(static_cast<size_t>(std::ceil(lane.x / columnWidth)));
  peaks_.columns(wave_, channel, scale.first, scale.framesPerPixel * columnWidth, columns_);
  const double middle = top + lane.y / 2.0;
  const double reach = lane.y / 2.0;
  wxGraphicsPath path = gc.CreatePath();
  for (size_t i = 0; i < columns_.size(); ++i) {
    const double high = middle - reach * std::clamp(columns_[i].max, -1.0f, 1.0f);
    const double low = middle - reach * std::clamp(columns_[i].min, -1.0f, 1.0f);
    path.AddRectangle(static_cast<double>(i) * columnWidth, high, columnWidth,
                      std::max(low - high, columnWidth));
  }
  gc.SetPen(wxNullPen);
  gc.SetAntialiasMode(wxANTIALIAS_NONE);
  gc.SetBrush(wxBrush(theme().rms));
  gc.FillPath(path, wxWINDING_RULE);
  gc.SetAntialiasMode(wxANTIALIAS_DEFAULT);
}

}  // namespace plumetta
