// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window_place.h"

#include <wx/display.h>

#include <algorithm>

namespace plumetta {
namespace {

constexpr const char* kSection = "Window";
constexpr int kAbsent = -1000000;
const wxSize kUsualSize{1100, 700};
const wxSize kLeastSize{560, 360};

// Whether enough of the title bar lies on a display to take hold of it.
bool canBeGrabbed(const wxRect& frame, int reach) {
  const wxRect title(frame.x, frame.y, frame.width, reach / 2);
  for (unsigned i = 0; i < wxDisplay::GetCount(); ++i) {
    const wxRect seen = wxDisplay(i).GetClientArea().Intersect(title);
    if (seen.width >= std::min(reach, title.width) && seen.height >= title.height) return true;
  }
  return false;
}

// Shifts a frame that would hang over an edge of the room back into it.
void keepInside(wxRect& frame, const wxRect& room) {
  frame.x = std::max(room.x, std::min(frame.x, room.GetRight() + 1 - frame.width));
  frame.y = std::max(room.y, std::min(frame.y, room.GetBottom() + 1 - frame.height));
}

}  // namespace

void keepOnDisplay(wxTopLevelWindow& window) {
  const int display = wxDisplay::GetFromWindow(&window);
  const wxRect room = wxDisplay(display == wxNOT_FOUND ? 0u : static_cast<unsigned>(display)).GetClientArea();
  wxSize least = window.GetMinSize();
  least.DecTo(room.GetSize());
  window.SetMinSize(least);
  wxRect frame = window.GetRect();
  frame.width = std::min(frame.width, room.width);
  frame.height = std::min(frame.height, room.height);
  keepInside(frame, room);
  window.SetSize(frame);
}

WindowPlace::WindowPlace(wxFrame& frame, WindowProfile& profile) : frame_(frame), profile_(profile) {
  frame_.SetMinSize(frame_.FromDIP(kLeastSize));
  frame_.Bind(wxEVT_MOVE, [this](wxMoveEvent& event) {
    follow();
    event.Skip();
  });
  frame_.Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    follow();
    event.Skip();
  });
}

void WindowPlace::restore() {
  const auto stored = [&](const char* key) { return profile_.integer(kSection, key, kAbsent); };
  const wxRect screen = wxDisplay(0u).GetClientArea();
  wxSize size(stored("Width"), stored("Height"));
  if (size.x < kLeastSize.x || size.y < kLeastSize.y) size = kUsualSize;
  size = frame_.FromDIP(size);
  size.DecTo(screen.GetSize());
  frame_.SetSize(size);
  wxRect wanted(wxPoint(stored("X"), stored("Y")), size);
  if (canBeGrabbed(wanted, frame_.FromDIP(80))) {
    const int display = wxDisplay::GetFromPoint(wanted.GetPosition());
    if (display != wxNOT_FOUND) keepInside(wanted, wxDisplay(static_cast<unsigned>(display)).GetClientArea());
    frame_.Move(wanted.GetPosition());
    // Some window managers take a place only from a window that they show already.
    place_ = wanted;
    frame_.Bind(wxEVT_ACTIVATE, &WindowPlace::onFirstActivation, this);
  } else {
    frame_.CentreOnScreen();
  }
  if (stored("Maximized") == 1) frame_.Maximize();
}

void WindowPlace::onFirstActivation(wxActivateEvent& event) {
  frame_.Unbind(wxEVT_ACTIVATE, &WindowPlace::onFirstActivation, this);
  frame_.CallAfter([this] {
    if (!frame_.IsMaximized() && frame_.GetRect() != place_) frame_.SetSize(place_);
  });
  event.Skip();
}

void WindowPlace::follow() {
  if (frame_.IsShown() && !frame_.IsMaximized() && !frame_.IsIconized() && !frame_.IsFullScreen()) {
    normal_ = frame_.GetRect();
  }
}

void WindowPlace::store() {
  profile_.setInteger(kSection, "Maximized", frame_.IsMaximized() ? 1 : 0);
  if (normal_.IsEmpty()) return;
  const wxSize size = frame_.ToDIP(normal_.GetSize());
  profile_.setInteger(kSection, "X", normal_.x);
  profile_.setInteger(kSection, "Y", normal_.y);
  profile_.setInteger(kSection, "Width", size.x);
  profile_.setInteger(kSection, "Height", size.y);
}

}  // namespace plumetta
