// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/envelope_layer.h"

#include <algorithm>
#include <cmath>

#include "doc/effect_names.h"

namespace plumetta {
namespace {

constexpr double kPointReach = 6;
constexpr double kCurveReach = 4;
constexpr double kCutBeyond = 16;
constexpr double kPointRadius = 3.5;

// The curve's value at a frame between two points, as stored: the gain is twice as much, but for the points.
float valueBetween(const CVolumeEnvelope& envelope, int channel, int index, int32_t frame) {
  const EnvelopePoint left = envelope.point(index, channel);
  const EnvelopePoint right = envelope.point(index + 1, channel);
  if (frame <= left.position) return left.value;
  if (frame >= right.position) return right.value;
  return envelope.gainAt(frame, channel) / 2;
}

// The index of the last point at or before a frame, of all but the last point.
int segmentAt(const CVolumeEnvelope& envelope, int channel, double frame) {
  int low = 0;
  int high = std::max(envelope.pointCount(channel) - 2, 0);
  while (low < high) {
    const int middle = (low + high + 1) / 2;
    if (envelope.point(middle, channel).position <= frame) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  return low;
}

}  // namespace

EnvelopeScale EnvelopeLayer::laneScale(int channel) const {
  const LaneLayout layout = lanes_();
  const double margin = std::min(5.0 * unit_, layout.laneHeight(channel) / 4.0);
  return {layout.top(channel) + margin, std::max(layout.laneHeight(channel) - 2 * margin, 1.0)};
}

double EnvelopeLayer::curveY(int channel, double x) const {
  const CVolumeEnvelope& envelope = view_.envelope();
  const double frame = view_.scale().frame(x);
  const int index = segmentAt(envelope, channel, frame);
  return laneScale(channel).y(
      valueBetween(envelope, channel, index, static_cast<int32_t>(std::clamp(frame, 0.0, 2147483646.0))));
}

void EnvelopeLayer::paint(wxGraphicsContext& gc, int left, int right) const {
  const CVolumeEnvelope& envelope = view_.envelope();
  if (!envelope.active()) return;
  const LaneLayout layout = lanes_();
  for (int channel = 0; channel < std::min(layout.lanes, envelope.channelCount()); ++channel) {
    if (layout.laneHeight(channel) <= 0) continue;
    gc.Clip(left, layout.top(channel), right - left, layout.laneHeight(channel));
    paintCurve(gc, channel, left, right);
    paintPoints(gc, channel, left, right);
    gc.ResetClip();
  }
}

void EnvelopeLayer::paintCurve(wxGraphicsContext& gc, int channel, int left, int right) const {
  const CVolumeEnvelope& envelope = view_.envelope();
  const FrameScale scale = view_.scale();
  const EnvelopeScale lane = laneScale(channel);
  const int last = envelope.pointCount(channel) - 1;
  // Points far outside of the window are beyond what a rasteriser can count: every segment is cut there.
  const double low = left - kCutBeyond;
  const double high = right + kCutBeyond;
  wxGraphicsPath path = gc.CreatePath();
  const int first = segmentAt(envelope, channel, scale.frame(low));
  for (int i = first; i < last; ++i) {
    const EnvelopePoint from = envelope.point(i, channel);
    const EnvelopePoint to = envelope.point(i + 1, channel);
    const double fromX = scale.x(from.position);
    const double toX = scale.x(to.position);
    const double begin = std::max(fromX, low);
    const double end = std::min(toX, high);
    if (fromX > high) break;
    const auto linear = [&](double x) {
      return lane.y(from.value + (to.value - from.value) * (x - fromX) / std::max(toX - fromX, 1e-9));
    };
    const auto at = [&](double x) {
      if (from.kind == EnvelopeKind::linear) return linear(x);
      return lane.y(valueBetween(envelope, channel, i, static_cast<int32_t>(scale.nearestFrame(x))));
    };
    if (i == first) path.MoveToPoint(begin, at(begin));
    if (from.kind == EnvelopeKind::hold) {
      path.AddLineToPoint(end, lane.y(from.value));
    } else if (from.kind != EnvelopeKind::linear) {
      for (double x = begin + 2; x < end; x += 2) path.AddLineToPoint(x, at(x));
    }
    path.AddLineToPoint(end, end < toX ? at(end) : lane.y(to.value));
  }
  const Theme& theme = view_.theme;
  const wxColour colour =
      view_.doc.wave().isActive(channel) ? theme.envelope : withAlpha(theme.envelope, 0x80);
  gc.SetPen(gc.CreatePen(wxGraphicsPenInfo(colour).Width(1.5 * unit_).Join(wxJOIN_ROUND)));
  gc.StrokePath(path);
}

void EnvelopeLayer::paintPoints(wxGraphicsContext& gc, int channel, int left, int right) const {
  const CVolumeEnvelope& envelope = view_.envelope();
  const FrameScale scale = view_.scale();
  const EnvelopeScale lane = laneScale(channel);
  const double radius = kPointRadius * unit_;
  gc.SetPen(gc.CreatePen(wxGraphicsPenInfo(view_.theme.envelope).Width(1.5 * unit_)));
  gc.SetBrush(wxBrush(view_.theme.lane));
  for (int i = segmentAt(envelope, channel, scale.frame(left - radius)); i < envelope.pointCount(channel);
       ++i) {
    const EnvelopePoint point = envelope.point(i, channel);
    const double x = scale.x(point.position);
    if (x > right + radius) break;
    if (x < left - radius) continue;
    gc.DrawEllipse(x - radius, lane.y(point.value) - radius, 2 * radius, 2 * radius);
  }
}

std::optional<EnvelopeLayer::Hit> EnvelopeLayer::hitAt(const wxPoint& at) const {
  const CVolumeEnvelope& envelope = view_.doc.wave().envelope;
  const LaneLayout layout = lanes_();
  const auto channel = layout.laneAt(at.y);
  if (!envelope.active() || !channel || *channel >= envelope.channelCount()) return std::nullopt;
  const FrameScale scale = view_.scale();
  const EnvelopeScale lane = laneScale(*channel);
  std::optional<Hit> best;
  double nearest = kPointReach * unit_;
  for (int i = segmentAt(envelope, *channel, scale.frame(at.x - nearest)); i < envelope.pointCount(*channel);
       ++i) {
    const EnvelopePoint point = envelope.point(i, *channel);
    const double dx = scale.x(point.position) - at.x;
    if (dx > kPointReach * unit_) break;
    const double distance = std::hypot(dx, lane.y(point.value) - at.y);
    if (distance > nearest) continue;
    nearest = distance;
    best = Hit{*channel, i};
  }
  if (best) return best;
  // A steep stretch is hit anywhere between its heights at the pixel's two sides.
  const double a = curveY(*channel, at.x - 1);
  const double b = curveY(*channel, at.x + 1);
  const double reach = kCurveReach * unit_;
  if (at.y < std::min(a, b) - reach || at.y > std::max(a, b) + reach) return std::nullopt;
  return Hit{*channel, std::nullopt};
}

namespace {

// Moves a point between its neighbours; the ends move up and down alone. A point made by the drag is not
// there yet in the document.
class EnvelopeDrag : public Drag {
 public:
  EnvelopeDrag(WaveView& view, int channel, int index, bool isNew, std::function<double(int)> valueAt)
      : view_(view), channel_(channel), index_(index), isNew_(isNew), valueAt_(std::move(valueAt)) {}

  void move(const wxPoint& at, bool) override {
    CVolumeEnvelope& envelope = *view_.preview.envelope;
    const int last = envelope.pointCount(channel_) - 1;
    if (index_ > 0 && index_ < last) {
      const int64_t lowest = int64_t{envelope.point(index_ - 1, channel_).position} + 1;
      const int64_t highest = int64_t{envelope.point(index_ + 1, channel_).position} - 1;
      const int64_t frame = std::clamp(view_.scale().nearestFrame(at.x), lowest, highest);
      envelope.setPosition(index_, channel_, static_cast<int32_t>(frame));
    }
    envelope.setValue(index_, channel_, static_cast<float>(valueAt_(at.y)));
    moved_ = true;
    tell();
    view_.onPreviewChanged();
  }

  void drop() override {
    const EnvelopePoint point = view_.preview.envelope->point(index_, channel_);
    view_.clearPreview();
    const FrameOrTime position{static_cast<double>(point.position)};
    if (isNew_) {
      view_.run("envelope-point", position, double{point.value}, int64_t{channel_},
                static_cast<int64_t>(point.kind));
    } else if (moved_) {
      view_.run("envelope-move", int64_t{index_}, int64_t{channel_}, position, double{point.value});
    }
  }

  void cancel() override {
    view_.clearPreview();
    view_.doc.prompter().status("");
  }

 private:
  void tell() const {
    const EnvelopePoint point = view_.preview.envelope->point(index_, channel_);
    char text[64];
    std::snprintf(text, sizeof text, " : %.2f (%+.1f dB)", point.value,
                  20 * std::log10(std::max(2.0 * point.value, 1e-5)));
    view_.doc.prompter().status(view_.positionText(point.position) + text);
  }

  WaveView& view_;
  int channel_;
  int index_;
  bool isNew_;
  bool moved_ = false;
  std::function<double(int)> valueAt_;
};

}  // namespace

std::unique_ptr<Drag> EnvelopeLayer::beginDrag(const Hit& hit, const wxPoint& at) {
  view_.preview.envelope = view_.doc.wave().envelope;
  int index = hit.point.value_or(0);
  if (!hit.point) {
    const FrameScale scale = view_.scale();
    const int left = segmentAt(view_.envelope(), hit.channel, scale.frame(at.x));
    const auto frame = static_cast<int32_t>(view_.doc.clampFrame(scale.nearestFrame(at.x)));
    const auto value = static_cast<float>(laneScale(hit.channel).value(curveY(hit.channel, at.x)));
    const EnvelopeKind kind = view_.envelope().point(left, hit.channel).kind;
    if (!view_.preview.envelope->insertPoint(frame, value, hit.channel, kind)) {
      view_.clearPreview();
      return nullptr;
    }
    index = left + 1;
    while (view_.envelope().point(index, hit.channel).position < frame) ++index;
  }
  view_.onPreviewChanged();
  return std::make_unique<EnvelopeDrag>(
      view_, hit.channel, index, !hit.point.has_value(),
      [this, channel = hit.channel](int y) { return laneScale(channel).value(y); });
}

bool EnvelopeLayer::addMenuItems(wxMenu& menu, const wxPoint& at) {
  const auto hit = hitAt(at);
  if (hit && hit->point) {
    addPointItems(menu, hit->channel, *hit->point);
    return true;
  }
  const auto channel = lanes_().laneAt(at.y);
  if (!channel || view_.doc.wave().frames() < 3) return false;
  const double value =
      hit ? laneScale(*channel).value(curveY(*channel, at.x)) : laneScale(*channel).value(at.y);
  const double frame = static_cast<double>(view_.scale().nearestFrame(at.x));
  const wxWindowID id = menu.Append(wxID_ANY, "Add &volume point here")->GetId();
  menu.Bind(
      wxEVT_MENU,
      [this, frame, value, c = int64_t{*channel}](wxCommandEvent&) {
        view_.run("envelope-point", FrameOrTime{frame}, value, c);
      },
      id);
  return true;
}

void EnvelopeLayer::addPointItems(wxMenu& menu, int channel, int index) {
  const CVolumeEnvelope& envelope = view_.doc.wave().envelope;
  const auto bind = [&](wxMenuItem* item, auto action) {
    menu.Bind(
        wxEVT_MENU, [action](wxCommandEvent&) { action(); }, item->GetId());
  };
  const int last = envelope.pointCount(channel) - 1;
  struct Choice {
    EnvelopeKind kind;
    int name;
  };
  if (index < last) {
    for (const auto& [kind, name] : {Choice{EnvelopeKind::linear, effect::kVolumePointLinear},
                                     Choice{EnvelopeKind::smooth, effect::kVolumePointSmooth},
                                     Choice{EnvelopeKind::hold, effect::kVolumePointHold},
                                     Choice{EnvelopeKind::curve, effect::kVolumePointCurve}}) {
      wxMenuItem* item = menu.AppendRadioItem(wxID_ANY, fromUtf8(EffectNames[static_cast<size_t>(name)]));
      item->Check(envelope.point(index, channel).kind == kind);
      bind(item, [this, channel, index, k = static_cast<int64_t>(kind)] {
        view_.run("envelope-kind", int64_t{index}, int64_t{channel}, k);
      });
    }
    menu.AppendSeparator();
  }
  bind(menu.Append(wxID_ANY, "Re&set volume point"),
       [this, channel, index] { view_.run("envelope-point-reset", int64_t{index}, int64_t{channel}); });
  wxMenuItem* remove = menu.Append(wxID_ANY, "&Remove volume point");
  remove->Enable(index > 0 && index < last);
  bind(remove, [this, channel, index] { view_.run("envelope-remove", int64_t{index}, int64_t{channel}); });
}

}  // namespace plumetta
