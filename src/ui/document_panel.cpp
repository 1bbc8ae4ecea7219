// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/document_panel.h"

#include <wx/sizer.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "doc/ruler_ticks.h"
#include "ui/lane_header.h"
#include "ui/marker_strip.h"
#include "ui/overview_strip.h"
#include "ui/time_ruler.h"

namespace plumetta {
namespace {

constexpr double kZoomStep = 2;
// Positions of the scroll bar: a file's length in pixels may be more than it can count.
constexpr int kScrollPositions = 1 << 20;

}  // namespace

DocumentPanel::DocumentPanel(wxWindow* parent, CPlumettaDoc& doc, DisplaySettings& settings)
    : wxPanel(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxTAB_TRAVERSAL | wxNO_BORDER),
      view_(doc, settings) {
  overview_ = new OverviewStrip(this, view_);
  ruler_ = new TimeRuler(this, view_);
  markers_ = new MarkerStrip(this, view_);
  canvas_ = new WaveformCanvas(this, view_);
  header_ = new LaneHeader(this, view_, *canvas_);
  scrollBar_ = new wxScrollBar(this, wxID_ANY);
  view_.onRefresh = [this] { refreshAll(); };
  view_.onSettingsChanged = [this] {
    if (onSettingsChanged) onSettingsChanged();
  };
  view_.onPreviewChanged = [this] { followAnnotations(); };
  arrange();

  canvas_->Bind(wxEVT_SIZE, &DocumentPanel::onCanvasSize, this);
  for (const auto& type : {wxEVT_SCROLL_TOP, wxEVT_SCROLL_BOTTOM, wxEVT_SCROLL_LINEUP, wxEVT_SCROLL_LINEDOWN,
                           wxEVT_SCROLL_PAGEUP, wxEVT_SCROLL_PAGEDOWN, wxEVT_SCROLL_THUMBTRACK}) {
    scrollBar_->Bind(type, &DocumentPanel::onScroll, this);
  }
  Bind(wxEVT_CHAR_HOOK, &DocumentPanel::onCharHook, this);
  Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
    view_.theme = Theme::current();
    SetBackgroundColour(view_.theme.margin);
    refreshAll();
    event.Skip();
  });
  doc.setListener(this);
}

DocumentPanel::~DocumentPanel() { view_.doc.setListener(nullptr); }

void DocumentPanel::arrange() {
  SetBackgroundStyle(wxBG_STYLE_SYSTEM);
  SetBackgroundColour(view_.theme.margin);
  const int margin = header_->GetMinSize().x;
  auto* sizer = new wxBoxSizer(wxVERTICAL);
  sizer->Add(overview_, 0, wxEXPAND);
  auto* grid = new wxFlexGridSizer(2, 0, 0);
  grid->AddGrowableCol(1);
  grid->AddGrowableRow(2);
  grid->Add(margin, 0);
  grid->Add(ruler_, 0, wxEXPAND);
  grid->Add(margin, 0);
  grid->Add(markers_, 0, wxEXPAND);
  grid->Add(header_, 0, wxEXPAND);
  grid->Add(canvas_, 1, wxEXPAND);
  grid->Add(margin, 0);
  grid->Add(scrollBar_, 0, wxEXPAND);
  sizer->Add(grid, 1, wxEXPAND);
  SetSizer(sizer);
}

void DocumentPanel::SetFocus() { canvas_->SetFocus(); }

// ---- Following ------------------------------------------------------------------------------------------

void DocumentPanel::refreshAll() {
  SetBackgroundColour(view_.theme.margin);
  Refresh(false);
  for (wxWindow* part : std::initializer_list<wxWindow*>{overview_, ruler_, markers_, canvas_, header_}) {
    part->Refresh(false);
  }
  syncScrollBar();
  if (onStatusChanged) onStatusChanged();
}

void DocumentPanel::followAnnotations() {
  overview_->Refresh(false);
  markers_->followAnnotations();
  canvas_->followAnnotations();
}

void DocumentPanel::samplesChanged() { refreshAll(); }

void DocumentPanel::annotationsChanged() {
  followAnnotations();
  header_->Refresh(false);
  if (onStatusChanged) onStatusChanged();
}

void DocumentPanel::viewChanged() {
  for (ViewWindow* part : std::initializer_list<ViewWindow*>{overview_, ruler_, markers_, canvas_})
    part->follow();
  syncScrollBar();
  if (onStatusChanged) onStatusChanged();
}

void DocumentPanel::titleChanged() {
  if (onTitleChanged) onTitleChanged();
}

void DocumentPanel::playbackStopped() {
  showFrame(view_.doc.view().cursor);
  refreshAll();
}

void DocumentPanel::showPlayFrame(std::optional<double> frame) {
  const auto before = std::exchange(view_.playFrame, frame);
  const bool held = overview_->dragging() || canvas_->dragging();
  if (before && frame && view_.settings.followPlayback && !held) view_.followPlayback(*before, *frame);
  overview_->followPlayFrame();
  canvas_->followPlayFrame();
}

void DocumentPanel::onCanvasSize(wxSizeEvent& event) {
  view_.setWidth(std::max(canvas_->GetClientSize().x, 1));
  refreshAll();
  event.Skip();
}

void DocumentPanel::onCharHook(wxKeyEvent& event) {
  if (event.GetKeyCode() == WXK_ESCAPE) {
    for (ViewWindow* part : std::initializer_list<ViewWindow*>{overview_, ruler_, markers_, canvas_}) {
      if (part->cancelDrag()) return;
    }
  }
  event.Skip();
}

// ---- Scroll bar -----------------------------------------------------------------------------------------

void DocumentPanel::syncScrollBar() {
  const double frames = std::max(view_.doc.wave().frames(), 1);
  const double perFrame = kScrollPositions / frames;
  const int thumb = std::clamp(static_cast<int>((view_.span() + 1) * perFrame), 1, kScrollPositions);
  const int position = static_cast<int>(view_.scale().first * perFrame);
  scrollBar_->SetScrollbar(std::min(position, kScrollPositions - thumb), thumb, kScrollPositions, thumb);
}

void DocumentPanel::onScroll(wxScrollEvent& event) {
  const wxEventType type = event.GetEventType();
  if (type == wxEVT_SCROLL_LINEUP || type == wxEVT_SCROLL_LINEDOWN) {
    view_.scrollBy((type == wxEVT_SCROLL_LINEUP ? -1 : 1) * view_.width() / 20.0);
  } else if (type == wxEVT_SCROLL_PAGEUP || type == wxEVT_SCROLL_PAGEDOWN) {
    view_.scrollBy((type == wxEVT_SCROLL_PAGEUP ? -1 : 1) * view_.width() * 0.9);
  } else {
    view_.scrollTo(static_cast<double>(event.GetPosition()) * view_.doc.wave().frames() / kScrollPositions);
  }
  syncScrollBar();
}

// ---- Zoom -----------------------------------------------------------------------------------------------

void DocumentPanel::zoomIn() { view_.zoomBy(kZoomStep); }
void DocumentPanel::zoomOut() { view_.zoomBy(1 / kZoomStep); }
void DocumentPanel::zoomToSelection() { view_.zoomToSelection(); }
void DocumentPanel::zoomAll() { view_.zoomAll(); }
void DocumentPanel::zoomVerticalIn() { view_.setAmplitudeZoom(view_.amplitudeZoom() * kZoomStep); }
void DocumentPanel::zoomVerticalOut() { view_.setAmplitudeZoom(view_.amplitudeZoom() / kZoomStep); }
void DocumentPanel::zoomVerticalReset() { view_.setAmplitudeZoom(1); }

// ---- Status ---------------------------------------------------------------------------------------------

wxString DocumentPanel::statusFormat() const {
  const CWave& wave = view_.doc.wave();
  const wxString channels = wave.channels() == 1   ? wxString("mono")
                            : wave.channels() == 2 ? wxString("stereo")
                                                   : wxString::Format("%d channels", wave.channels());
  return wxString::Format("%u Hz, %d bits, ", wave.sampleRate(), wave.bitsPerSample()) + channels;
}

wxString DocumentPanel::statusLength() const {
  const int32_t frames = view_.doc.wave().frames();
  const std::string time = view_.positionText(frames);
  const std::string count = formatCount(frames);
  const std::string counted = count + (frames == 1 ? " frame" : " frames");
  return fromUtf8(time == count ? counted : time + " (" + counted + ")");
}

wxString DocumentPanel::statusCursor() const { return fromUtf8(view_.positionText(view_.doc.view().cursor)); }

wxString DocumentPanel::statusSelection() const {
  const ViewState& state = view_.doc.view();
  if (!state.hasSelection()) return {};
  const int64_t length = int64_t{state.upperBound()} - state.lowerBound() + 1;
  return fromUtf8(view_.positionText(state.lowerBound()) + " \xE2\x80\x93 " +
                  view_.positionText(state.upperBound()) + " (" + view_.positionText(length) + ")");
}

}  // namespace plumetta
