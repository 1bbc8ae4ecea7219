// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/sonogram_view.h"

#include <wx/image.h>

#include <algorithm>
#include <cmath>

#include "doc/frequency_rows.h"
#include "doc/view_geometry.h"
#include "ui/text.h"
#include "ui/view_window.h"

namespace plumetta {
namespace {

constexpr int kLeft = 52;
constexpr int kRight = 72;
constexpr int kEdge = 8;
constexpr int kBottom = 24;
constexpr int kLaneGap = 4;
constexpr int kLegendWidth = 12;
constexpr int kTick = 4;
constexpr int kTimeDistance = 88;
constexpr int kFrequencyDistance = 28;
constexpr int kLevelDistance = 28;
constexpr int kSlack = 3;  // a hand that trembles while it clicks selects nothing
constexpr double kFar = 1e5;

}  // namespace

SonogramView::SonogramView(wxWindow* parent) : LiveView(parent, "Sonogram"), colours_(levelColours(theme())) {
  Bind(wxEVT_LEFT_DOWN, &SonogramView::onLeftDown, this);
  Bind(wxEVT_LEFT_DCLICK, [this](wxMouseEvent& event) {
    if (event.GetX() >= area().x) return onLeftDown(event);
    axis_ = whole_;
    picturesChanged();
  });
  Bind(wxEVT_MOTION, &SonogramView::onMotion, this);
  Bind(wxEVT_LEFT_UP, &SonogramView::onLeftUp, this);
  Bind(wxEVT_MOUSE_CAPTURE_LOST, [this](wxMouseCaptureLostEvent&) { press_.reset(); });
  Bind(wxEVT_LEAVE_WINDOW, [this](wxMouseEvent&) {
    pointer_.reset();
    if (onPointer) onPointer(pointer_);
    Refresh(false);
  });
  Bind(wxEVT_MOUSEWHEEL, &SonogramView::onWheel, this);
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    picturesChanged();
    event.Skip();
  });
}

// ---- What is shown --------------------------------------------------------------------------------------

void SonogramView::setScene(const Scene& scene) {
  if (scene == scene_) return;
  scene_ = scene;
  Refresh(false);
}

void SonogramView::setSonogram(const Sonogram* sonogram) {
  sonogram_ = sonogram;
  picturesChanged();
}

void SonogramView::setFrequencies(const FrequencyAxis& whole) {
  if (whole == whole_) return;
  whole_ = axis_ = whole;
  picturesChanged();
}

void SonogramView::setDepth(int decibels) {
  depthDb_ = decibels;
  picturesChanged();
}

void SonogramView::themeChanged() {
  colours_ = levelColours(theme());
  picturesChanged();
}

void SonogramView::picturesChanged() {
  stale_ = true;
  Refresh(false);
}

// ---- Places ---------------------------------------------------------------------------------------------

wxRect SonogramView::area() const {
  const wxSize size = GetClientSize();
  const int left = FromDIP(kLeft), right = FromDIP(kRight), top = FromDIP(kEdge), bottom = FromDIP(kBottom);
  return {left, top, std::max(size.x - left - right, 1), std::max(size.y - top - bottom, 1)};
}

int SonogramView::columns() const {
  return std::max(static_cast<int>(area().width * GetContentScaleFactor()), 1);
}

int SonogramView::planes() const { return sonogram_ != nullptr ? sonogram_->plan().planes() : 1; }

wxRect SonogramView::laneRect(int plane) const {
  const wxRect place = area();
  const LaneLayout lanes{planes(), place.height + FromDIP(kLaneGap), FromDIP(kLaneGap)};
  return {place.x, place.y + lanes.top(plane), place.width, std::max(lanes.laneHeight(plane), 1)};
}

double SonogramView::xOf(double frame) const {
  const wxRect place = area();
  const double fraction = scene_.length > 0 ? (frame - scene_.first) / scene_.length : 0.0;
  return place.x + std::clamp(fraction * place.width, -kFar, kFar);
}

double SonogramView::frameAt(int x) const {
  const wxRect place = area();
  return scene_.first + static_cast<double>(x - place.x) / place.width * scene_.length;
}

int32_t SonogramView::frameInFile(int x) const {
  const double frame = std::clamp(frameAt(x), scene_.first, scene_.first + scene_.length);
  return static_cast<int32_t>(std::clamp(std::round(frame), 0.0, std::max(scene_.frames - 1.0, 0.0)));
}

std::optional<SonogramView::Place> SonogramView::placeAt(const wxPoint& at) const {
  for (int plane = 0; plane < planes(); ++plane) {
    const wxRect lane = laneRect(plane);
    if (!lane.Contains(at)) continue;
    return Place{frameAt(at.x), axis_.hz(1.0 - static_cast<double>(at.y - lane.y) / lane.height), plane};
  }
  return std::nullopt;
}

// ---- Pictures -------------------------------------------------------------------------------------------

void SonogramView::renewPictures(wxGraphicsContext& gc) {
  stale_ = false;
  pictures_.clear();
  if (sonogram_ == nullptr) return;
  for (int plane = 0; plane < planes(); ++plane) {
    pictures_.push_back(
        pictureOf(gc, plane, static_cast<int>(laneRect(plane).height * GetContentScaleFactor())));
  }
}

wxGraphicsBitmap SonogramView::pictureOf(wxGraphicsContext& gc, int plane, int rows) const {
  const int columns = sonogram_->plan().columns;
  const FrequencyRows places(axis_, sonogram_->hzPerLine(), sonogram_->lines(), std::max(rows, 1));
  std::vector<float> db(places.size());
  wxImage image(columns, static_cast<int>(places.size()), false);
  const float steps = static_cast<float>(colours_.size() - 1);
  const float stepsPerDb = steps / static_cast<float>(depthDb_);
  for (int column = 0; column < columns; ++column) {
    places.decibels(sonogram_->powers(plane, column), sonogram_->powerScale(column), db);
    unsigned char* pixel = image.GetData() + 3 * column;
    for (size_t row = db.size(); row-- > 0; pixel += 3 * columns) {
      const float step = std::clamp(steps + db[row] * stepsPerDb, 0.0f, steps);
      const Rgb& colour = colours_[static_cast<size_t>(step + 0.5f)];
      pixel[0] = colour.red;
      pixel[1] = colour.green;
      pixel[2] = colour.blue;
    }
  }
  return gc.CreateBitmapFromImage(image);
}

// ---- Painting -------------------------------------------------------------------------------------------

void SonogramView::paint(wxGraphicsContext& gc, const wxSize&) {
  if (stale_) renewPictures(gc);
  gc.SetFont(smallFont(), theme().textQuiet);
  for (int plane = 0; plane < planes(); ++plane) {
    const wxRect lane = laneRect(plane);
    fillRect(gc, theme().lane, lane.x, lane.y, lane.width, lane.height);
    gc.Clip(lane.x, lane.y, lane.width, lane.height);
    paintPicture(gc, plane);
    gc.ResetClip();
    paintFrequencies(gc, lane);
  }
  const wxRect place = area();
  gc.Clip(place.x, place.y, place.width, place.height);
  paintLines(gc);
  gc.ResetClip();
  paintTimes(gc);
  paintLegend(gc);
  for (int plane = 0; plane < planes(); ++plane) paintName(gc, plane);
}

// Where the sonogram is of another stretch than the one to be seen, it stands in until the new one is there.
void SonogramView::paintPicture(wxGraphicsContext& gc, int plane) {
  if (sonogram_ == nullptr || static_cast<size_t>(plane) >= pictures_.size() || scene_.length <= 0) return;
  const SonogramPlan& plan = sonogram_->plan();
  const wxRect place = area(), lane = laneRect(plane);
  const double pixelsPerFrame = place.width / scene_.length;
  const double left = place.x + (plan.firstFrame - scene_.first) * pixelsPerFrame;
  const double width = plan.columns * plan.framesPerColumn * pixelsPerFrame;
  if (!(std::abs(left) < kFar && width < kFar && width > 0)) return;
  gc.SetInterpolationQuality(wxINTERPOLATION_FAST);
  gc.DrawBitmap(pictures_[static_cast<size_t>(plane)], snapped(left), lane.y, width, lane.height);
}

void SonogramView::paintFrequencies(wxGraphicsContext& gc, const wxRect& lane) {
  double free = kFar;
  for (const FrequencyTick& tick : frequencyTicks(axis_, lane.height, FromDIP(kFrequencyDistance))) {
    const double y = snapped(lane.y + (1.0 - axis_.fraction(tick.hz)) * lane.height);
    const bool labelled = !tick.label.empty();
    const double length = FromDIP(labelled ? kTick + 2 : kTick - 1);
    fillRect(gc, theme().line, lane.x - length, y, length, hairline());
    if (!labelled) continue;
    double width = 0, height = 0;
    gc.GetTextExtent(tick.label, &width, &height);
    const double top = std::clamp(y - height / 2, 0.0, std::max(GetClientSize().y - height, 0.0));
    if (top + height > free) continue;
    free = top;
    gc.DrawText(tick.label, lane.x - width - FromDIP(kTick + 5), top);
  }
}

void SonogramView::paintTimes(wxGraphicsContext& gc) {
  if (scene_.length <= 0) return;
  const wxRect place = area();
  const double framesPerPixel = scene_.length / place.width;
  const TickSpacing ticks =
      ticksIn(scene_.timeFormat, framesPerPixel, scene_.sampleRate, FromDIP(kTimeDistance));
  const double minor = ticks.major / ticks.minorParts;
  const double bottom = place.GetBottom() + 1;
  const double last = scene_.first + scene_.length;
  for (auto i = static_cast<int64_t>(std::ceil(scene_.first / minor)); minor * static_cast<double>(i) <= last;
       ++i) {
    const double frame = minor * static_cast<double>(i);
    const bool labelled = i % ticks.minorParts == 0;
    const double x = snapped(xOf(frame));
    fillRect(gc, theme().line, x, bottom, hairline(), FromDIP(labelled ? kTick + 2 : kTick - 1));
    if (!labelled) continue;
    const wxString label = toWx(positionIn(scene_.timeFormat, frame, scene_.sampleRate, ticks.timeDecimals));
    gc.DrawText(label, x + FromDIP(3), bottom + FromDIP(kTick));
  }
}

void SonogramView::paintLines(wxGraphicsContext& gc) {
  const wxRect place = area();
  // With the ground on either side, or it is lost among the colours.
  const auto upright = [&](double frame, const wxColour& colour) {
    const double x = snapped(xOf(frame));
    fillRect(gc, withAlpha(theme().lane, 0xA0), x - hairline(), place.y, 3 * hairline(), place.height);
    fillRect(gc, colour, x, place.y, hairline(), place.height);
  };
  if (scene_.lower != scene_.upper) {
    // A tint would pass for a level: what is not selected fades instead.
    const double from = xOf(scene_.lower), to = xOf(scene_.upper), end = place.GetRight() + 1;
    const wxColour veil = withAlpha(theme().lane, 0x90);
    fillRect(gc, veil, place.x, place.y, std::min(from, end) - place.x, place.height);
    fillRect(gc, veil, std::max<double>(to, place.x), place.y, end - std::max<double>(to, place.x),
             place.height);
    upright(scene_.lower, theme().accent);
    upright(scene_.upper, theme().accent);
  }
  upright(scene_.cursor, theme().cursor);
  if (scene_.playFrame) upright(*scene_.playFrame, theme().playCursor);
  if (!pointer_) return;
  for (int plane = 0; plane < planes(); ++plane) {
    const wxRect lane = laneRect(plane);
    const double y = snapped(lane.y + (1.0 - axis_.fraction(pointer_->hz)) * lane.height);
    fillRect(gc, withAlpha(theme().cursor, 0x60), lane.x, y, lane.width, hairline());
  }
}

void SonogramView::paintName(wxGraphicsContext& gc, int plane) {
  if (static_cast<size_t>(plane) >= scene_.names.size()) return;
  const wxString& name = scene_.names[static_cast<size_t>(plane)];
  const wxRect lane = laneRect(plane);
  const double gap = FromDIP(5);
  double width = 0, height = 0;
  gc.SetFont(smallFont(), theme().text);
  gc.GetTextExtent(name, &width, &height);
  if (lane.height < height + 3 * gap) return;
  fillRect(gc, withAlpha(theme().margin, 0xC0), lane.x + gap, lane.y + gap, width + 2 * gap, height + gap);
  gc.DrawText(name, lane.x + 2 * gap, lane.y + 1.5 * gap);
}

void SonogramView::paintLegend(wxGraphicsContext& gc) {
  const wxRect place = area();
  const double left = place.GetRight() + FromDIP(kEdge + 4), width = FromDIP(kLegendWidth);
  wxGraphicsGradientStops stops;
  for (size_t i = 0; i < colours_.size(); i += 15) {
    const Rgb& colour = colours_[colours_.size() - 1 - i];
    stops.Add(wxColour(colour.red, colour.green, colour.blue),
              static_cast<float>(i) / static_cast<float>(colours_.size() - 1));
  }
  const Rgb &low = colours_.front(), &high = colours_.back();
  stops.SetStartColour(wxColour(high.red, high.green, high.blue));
  stops.SetEndColour(wxColour(low.red, low.green, low.blue));
  gc.SetPen(gc.CreatePen(wxGraphicsPenInfo(theme().line).Width(hairline())));
  gc.SetBrush(gc.CreateLinearGradientBrush(left, place.y, left, place.GetBottom() + 1, stops));
  gc.DrawRectangle(left, place.y, width, place.height);
  gc.SetFont(smallFont(), theme().textQuiet);
  const double step =
      decimalStep(static_cast<double>(depthDb_) / place.height * FromDIP(kLevelDistance)).size;
  for (double db = 0; db >= -depthDb_; db -= step) {
    const double y = snapped(place.y - db / depthDb_ * place.height);
    const wxString label = db == 0 ? wxString("0 dB") : toWx("\u2212") + wxString::Format("%g", -db);
    double textWidth = 0, height = 0;
    gc.GetTextExtent(label, &textWidth, &height);
    fillRect(gc, theme().line, left + width, y, FromDIP(kTick), hairline());
    gc.DrawText(label, left + width + FromDIP(kTick + 3), std::max(y - height / 2, 0.0));
  }
}

// ---- Mouse ----------------------------------------------------------------------------------------------

void SonogramView::onLeftDown(wxMouseEvent& event) {
  if (!placeAt(event.GetPosition())) return;
  press_ = Press{event.GetX(), frameInFile(event.GetX()), false};
  if (!HasCapture()) CaptureMouse();
}

void SonogramView::onMotion(wxMouseEvent& event) {
  if (press_) {
    press_->moved = press_->moved || std::abs(event.GetX() - press_->x) >= FromDIP(kSlack);
    if (press_->moved && onSelect) onSelect(press_->frame, frameInFile(event.GetX()));
  }
  pointer_ = placeAt(event.GetPosition());
  if (onPointer) onPointer(pointer_);
  Refresh(false);
}

void SonogramView::onLeftUp(wxMouseEvent&) {
  if (press_ && !press_->moved && onClick) onClick(press_->frame);
  endPress();
}

void SonogramView::endPress() {
  press_.reset();
  if (HasCapture()) ReleaseMouse();
}

void SonogramView::onWheel(wxMouseEvent& event) {
  const double notches = static_cast<double>(event.GetWheelRotation()) / std::max(event.GetWheelDelta(), 1);
  const bool sideways = event.GetWheelAxis() == wxMOUSE_WHEEL_HORIZONTAL;
  if (event.ControlDown() || event.GetX() < area().x) {
    zoomFrequencies(event.GetPosition(), std::exp2(notches / 2));
  } else if (event.ShiftDown() || sideways) {
    const double moved = (sideways ? notches : -notches) / 10;
    if (onStretch) onStretch(scene_.first + moved * scene_.length, scene_.length);
  } else {
    zoomTime(event.GetX(), std::exp2(notches / 2));
  }
}

void SonogramView::zoomFrequencies(const wxPoint& at, double factor) {
  const auto place = placeAt({area().x, at.y});
  axis_ = axis_.zoomed(place ? axis_.fraction(place->hz) : 0.5, factor, whole_);
  picturesChanged();
}

void SonogramView::zoomTime(int x, double factor) {
  const wxRect place = area();
  const double at = std::clamp(static_cast<double>(x - place.x) / place.width, 0.0, 1.0);
  const double length = scene_.length / factor;
  if (onStretch) onStretch(scene_.first + at * (scene_.length - length), length);
}

}  // namespace plumetta
