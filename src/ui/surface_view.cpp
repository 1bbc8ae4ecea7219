// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/surface_view.h"

#include <wx/image.h>

#include <algorithm>
#include <cmath>

#include "doc/ruler_ticks.h"
#include "ui/text.h"
#include "ui/view_window.h"

namespace plumetta {
namespace {

constexpr double kDepth = SurfaceProjection::kDepth;
constexpr double kHeight = SurfaceProjection::kHeight;
constexpr int kSideMargin = 84, kUpperMargin = 28;  // for the labels
constexpr int kLabelReach = 12;                     // from an edge to the middle of its labels
constexpr double kRadiansPerPixel = 0.008;
constexpr double kZoomPerNotch = 1.15;
constexpr int kLineEvery = 4;
constexpr int kFrequencyDistance = 44;
constexpr double kDbStep = 30.0;

wxImage imageOf(const Picture& picture) {
  wxImage image(picture.width, picture.height, false);
  unsigned char* target = image.GetData();
  for (const Rgb& pixel : picture.pixels) {
    *target++ = pixel.red;
    *target++ = pixel.green;
    *target++ = pixel.blue;
  }
  return image;
}

}  // namespace

SurfaceView::SurfaceView(wxWindow* parent)
    : LiveView(parent, "3D spectrum"), colours_(levelColours(theme())) {
  Bind(wxEVT_LEFT_DOWN, [this](wxMouseEvent& event) {
    dragFrom_ = event.GetPosition();
    dragCamera_ = camera_;
    if (!HasCapture()) CaptureMouse();
  });
  Bind(wxEVT_LEFT_UP, [this](wxMouseEvent&) { endDrag(); });
  Bind(wxEVT_MOUSE_CAPTURE_LOST, [this](wxMouseCaptureLostEvent&) { endDrag(); });
  Bind(wxEVT_LEFT_DCLICK, [this](wxMouseEvent&) { setCamera({}); });
  Bind(wxEVT_MOTION, &SurfaceView::onMotion, this);
  Bind(wxEVT_LEAVE_WINDOW, [this](wxMouseEvent&) {
    if (onPointer) onPointer(std::nullopt);
  });
  Bind(wxEVT_MOUSEWHEEL, [this](wxMouseEvent& event) {
    const double notches = static_cast<double>(event.GetWheelRotation()) / std::max(event.GetWheelDelta(), 1);
    setCamera({camera_.turn, camera_.tilt, camera_.zoom * std::pow(kZoomPerNotch, notches)});
  });
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    changed();
    event.Skip();
  });
}

// ---- What is shown --------------------------------------------------------------------------------------

void SurfaceView::setField(HeightField field) {
  field_ = std::move(field);
  changed();
}

void SurfaceView::setScale(const Scale& scale) {
  if (scale == scale_) return;
  scale_ = scale;
  changed();
}

void SurfaceView::setMoving(bool moving) {
  if (moving == moving_) return;
  moving_ = moving;
  changed();
}

void SurfaceView::setCamera(const SurfaceCamera& camera) {
  camera_ = camera.bounded();
  changed();
}

void SurfaceView::themeChanged() {
  colours_ = levelColours(theme());
  changed();
}

void SurfaceView::changed() {
  stale_ = true;
  Refresh(false);
}

// In pixels of a picture `scale` times as fine as the window.
SurfaceProjection SurfaceView::projection(double scale) const {
  const wxSize size = GetClientSize();
  return {camera_, size.x * scale, size.y * scale, FromDIP(kSideMargin) * scale,
          FromDIP(kUpperMargin) * scale};
}

// ---- Painting -------------------------------------------------------------------------------------------

void SurfaceView::renewPicture(wxGraphicsContext& gc) {
  stale_ = false;
  const wxSize size = GetClientSize();
  const double fineness = GetContentScaleFactor() * (coarse() ? 1 : 2);
  const auto pixels = [&](int length) { return std::max(static_cast<int>(length * fineness), 2); };
  const SurfaceProjection seen = projection(fineness);
  Picture picture(pixels(size.x), pixels(size.y), rgbOf(theme().lane));
  const SurfacePainter painter(field_, seen);
  painter.paintFrame(picture, rgbOf(theme().line), std::max(static_cast<int>(scale_.depthDb / kDbStep), 1));
  painter.paintSurface(picture, colours_, kLineEvery);
  picture_ = gc.CreateBitmapFromImage(imageOf(coarse() ? picture : halved(picture)));
}

void SurfaceView::paint(wxGraphicsContext& gc, const wxSize& size) {
  fillRect(gc, theme().lane, 0, 0, size.x, size.y);
  if (field_.spectra < 2 || field_.places < 2) return;
  if (stale_) renewPicture(gc);
  gc.DrawBitmap(picture_, 0, 0, size.x, size.y);
  const SurfaceProjection seen = projection(1);
  gc.SetFont(smallFont(), theme().textQuiet);
  paintFrequencies(gc, seen);
  paintTimes(gc, seen);
  paintDecibels(gc, seen);
}

void SurfaceView::paintLabel(wxGraphicsContext& gc, const wxString& label, SurfaceProjection::Point at,
                             SurfaceProjection::Point inner) {
  double width = 0, height = 0;
  gc.GetTextExtent(label, &width, &height);
  const double dx = at.x - inner.x, dy = at.y - inner.y, length = std::max(std::hypot(dx, dy), 1e-6);
  const double reach = FromDIP(kLabelReach);
  const double x = at.x + dx / length * (reach + width / 2), y = at.y + dy / length * reach;
  gc.DrawText(label, x - width / 2, y - height / 2);
}

// Along the front edge.
void SurfaceView::paintFrequencies(wxGraphicsContext& gc, const SurfaceProjection& seen) {
  const double y = seen.eyeY() < 0 ? -kDepth : kDepth;
  const auto from = seen.at(-1, y, 0), to = seen.at(1, y, 0);
  const double pixels = std::abs(to.x - from.x);
  for (const FrequencyTick& tick : frequencyTicks(scale_.frequencies, pixels, FromDIP(kFrequencyDistance))) {
    if (tick.label.empty()) continue;
    const double x = 2.0 * scale_.frequencies.fraction(tick.hz) - 1.0;
    paintLabel(gc, tick.label, seen.at(x, y, 0), seen.at(x, 0.9 * y, 0));
  }
}

void SurfaceView::paintTimes(wxGraphicsContext& gc, const SurfaceProjection& seen) {
  const double x = seen.eyeX() < 0 ? -1.0 : 1.0;
  for (const TimeLabel& time : scale_.times) {
    const double y = kDepth * (1.0 - 2.0 * time.fraction);
    paintLabel(gc, time.text, seen.at(x, y, 0), seen.at(0.9 * x, y, 0));
  }
}

// Along the upright edge that stands farthest to a side.
void SurfaceView::paintDecibels(wxGraphicsContext& gc, const SurfaceProjection& seen) {
  double cornerX = -1, cornerY = -kDepth;
  for (const double x : {-1.0, 1.0}) {
    for (const double y : {-kDepth, kDepth}) {
      if (seen.at(x, y, kHeight).x < seen.at(cornerX, cornerY, kHeight).x) cornerX = x, cornerY = y;
    }
  }
  for (double db = 0; db >= -scale_.depthDb; db -= kDbStep) {
    const double z = kHeight * (1.0 + db / scale_.depthDb);
    const auto at = seen.at(cornerX, cornerY, z);
    const wxString label = db == 0 ? wxString("0 dB") : toWx("\u2212") + wxString::Format("%g", -db);
    paintLabel(gc, label, at, {at.x + 1, at.y});
  }
}

// ---- Mouse ----------------------------------------------------------------------------------------------

void SurfaceView::onMotion(wxMouseEvent& event) {
  if (dragFrom_) {
    const wxPoint moved = event.GetPosition() - *dragFrom_;
    setCamera({dragCamera_.turn + moved.x * kRadiansPerPixel / FromDIP(1),
               dragCamera_.tilt + moved.y * kRadiansPerPixel / FromDIP(1), camera_.zoom});
  } else if (onPointer && field_.spectra >= 2 && field_.places >= 2) {
    const SurfaceProjection seen = projection(1);
    onPointer(SurfacePainter(field_, seen).spotAt(event.GetX(), event.GetY()));
  }
}

void SurfaceView::endDrag() {
  if (HasCapture()) ReleaseMouse();
  if (dragFrom_) changed();
  dragFrom_.reset();
}

}  // namespace plumetta
