// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "doc/frequency_axis.h"
#include "doc/surface_painter.h"
#include "ui/level_colours.h"
#include "ui/live_view.h"

namespace plumetta {

// Successive spectra as a landscape: frequency to the right, time to the front, levels as heights and
// colours. Dragging turns and tilts it, the wheel brings it nearer, a double click shows it as at first.
// While it is turned it is painted coarser.
class SurfaceView : public LiveView {
 public:
  struct TimeLabel {
    double fraction;  // 0 at the first spectrum, 1 at the last
    wxString text;
    bool operator==(const TimeLabel&) const = default;
  };
  // What the heights stand for.
  struct Scale {
    FrequencyAxis frequencies;
    int depthDb = 90;  // from height 0 to 1
    std::vector<TimeLabel> times;
    bool operator==(const Scale&) const = default;
  };

  explicit SurfaceView(wxWindow* parent);

  void setField(HeightField field);  // without spectra for none
  void setScale(const Scale& scale);
  // Pictures follow one another fast, and are painted coarser.
  void setMoving(bool moving);
  void setCamera(const SurfaceCamera& camera);
  const SurfaceCamera& camera() const { return camera_; }

  std::function<void(std::optional<SurfacePainter::Spot>)> onPointer;

 protected:
  void paint(wxGraphicsContext& gc, const wxSize& size) override;
  void themeChanged() override;

 private:
  void changed();
  bool coarse() const { return moving_ || dragFrom_.has_value(); }
  SurfaceProjection projection(double scale) const;
  void renewPicture(wxGraphicsContext& gc);
  void paintFrequencies(wxGraphicsContext& gc, const SurfaceProjection& projection);
  void paintTimes(wxGraphicsContext& gc, const SurfaceProjection& projection);
  void paintDecibels(wxGraphicsContext& gc, const SurfaceProjection& projection);
  // Beside a point of the box, on the side that looks away from its middle.
  void paintLabel(wxGraphicsContext& gc, const wxString& label, SurfaceProjection::Point at,
                  SurfaceProjection::Point inner);
  void onMotion(wxMouseEvent& event);
  void endDrag();

  HeightField field_;
  Scale scale_;
  SurfaceCamera camera_;
  LevelColours colours_;
  wxGraphicsBitmap picture_;
  bool stale_ = true;  // the picture is not that of field, camera, colours and size
  bool moving_ = false;
  std::optional<wxPoint> dragFrom_;
  SurfaceCamera dragCamera_;
};

}  // namespace plumetta
