// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dragged_panes.h"

#include <wx/settings.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "ui/theme.h"

namespace plumetta {
namespace {

constexpr int kFrameWidth = 3;
constexpr int kWidestBeside = 240;
constexpr int kUsualThreshold = 4;  // where the system names none

bool isDragged(wxPoint from, wxPoint to, const wxWindow& window) {
  const auto beyond = [&window](int way, wxSystemMetric metric) {
    const int threshold = wxSystemSettings::GetMetric(metric, &window);
    return std::abs(way) > (threshold > 0 ? threshold : kUsualThreshold);
  };
  return beyond(to.x - from.x, wxSYS_DRAG_X) || beyond(to.y - from.y, wxSYS_DRAG_Y);
}

}  // namespace

DraggedPanes::DraggedPanes(wxWindow* window) : wxAuiManager(window, 0) {
  Bind(wxEVT_MOTION, &DraggedPanes::onMotion, this);
  Bind(wxEVT_LEFT_UP, &DraggedPanes::onLeftUp, this);
  Bind(wxEVT_MOUSE_CAPTURE_LOST, [this](wxMouseCaptureLostEvent& event) {
    dragged_ = nullptr;
    HideHint();
    event.Skip();
  });
}

void DraggedPanes::onMotion(wxMouseEvent& event) {
  event.Skip();
  const bool held =
      m_action == actionClickCaption && m_actionPart != nullptr && m_actionPart->pane != nullptr;
  if (held && isDragged(m_actionStart, event.GetPosition(), *m_frame)) dragged_ = m_actionPart->pane->window;
  if (dragged_ != nullptr) DrawHintRect(dragged_, event.GetPosition(), m_actionOffset);
}

void DraggedPanes::onLeftUp(wxMouseEvent& event) {
  event.Skip();
  wxWindow* const pane = std::exchange(dragged_, nullptr);
  if (pane == nullptr) return;
  HideHint();
  // Once the click has been dealt with, which refers to the layout.
  CallAfter([this, pane, place = event.GetPosition(), grip = m_actionOffset] { drop(*pane, place, grip); });
}

void DraggedPanes::drop(wxWindow& pane, wxPoint place, wxPoint grip) {
  wxAuiPaneInfo& info = GetPane(&pane);
  if (info.IsOk() && DoDrop(m_docks, m_panes, info, place, grip)) onDragged();
}

// What was wide above or below takes no more than a column beside.
bool DraggedPanes::ProcessDockResult(wxAuiPaneInfo& target, const wxAuiPaneInfo& place) {
  wxAuiPaneInfo narrowed = place;
  const bool beside = place.dock_direction == wxAUI_DOCK_LEFT || place.dock_direction == wxAUI_DOCK_RIGHT;
  if (beside) narrowed.best_size.x = std::min(narrowed.best_size.x, m_frame->FromDIP(kWidestBeside));
  return wxAuiManager::ProcessDockResult(target, narrowed);
}

void DraggedPanes::ShowHint(const wxRect& onScreen) {
  const wxRect area(m_frame->ScreenToClient(onScreen.GetPosition()), onScreen.GetSize());
  const int width = std::min(m_frame->FromDIP(kFrameWidth), std::min(area.width, area.height));
  const wxRect sides[] = {{area.x, area.y, area.width, width},
                          {area.x, area.GetBottom() + 1 - width, area.width, width},
                          {area.x, area.y, width, area.height},
                          {area.GetRight() + 1 - width, area.y, width, area.height}};
  for (size_t i = 0; i < std::size(sides); ++i) {
    if (i >= frame_.size())
      frame_.push_back(new wxWindow(m_frame, wxID_ANY, sides[i].GetPosition(), wxSize(1, 1)));
    frame_[i]->SetBackgroundColour(Theme::current().accent);
    frame_[i]->SetSize(sides[i]);
    frame_[i]->Show();
    frame_[i]->Raise();
  }
}

void DraggedPanes::HideHint() {
  for (wxWindow* side : frame_) side->Hide();
}

}  // namespace plumetta
