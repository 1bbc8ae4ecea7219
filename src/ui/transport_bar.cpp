// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/transport_bar.h"

#include <wx/settings.h>
#include <wx/stattext.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/text.h"
#include "ui/theme.h"
#include "ui/toolbar_icons.h"

namespace plumetta {
namespace {

constexpr int kSteps = 100;  // of the slider for a factor of 1
constexpr int kSliderWidth = 150;
constexpr int kIconSize = 20;

// An empty name stands for a gap.
constexpr const char* kButtons[] = {"back-to-start", "rewind",  "play", "play-all", "pause",
                                    "stop",          "forward", "",     "loop",     "",
                                    "record",        "monitor", "",     "rack-on",  "rack"};

wxBitmapBundle icon(const std::string& id, const wxColour& colour) {
  return toolbarIcon(id, colour, wxSize(kIconSize, kIconSize));
}

}  // namespace

// ---- Volume ---------------------------------------------------------------------------------------------

wxString volumeText(float factor) {
  return factor > 0 ? wxString::Format("%+.1f dB", 20 * std::log10(factor)) : wxString("silent");
}

VolumeSlider::VolumeSlider(wxWindow* parent, std::atomic<float>& volume)
    : wxSlider(parent, wxID_ANY, kSteps, 0, 2 * kSteps, wxDefaultPosition,
               wxWindow::FromDIP(wxSize(kSliderWidth, -1), parent)),
      volume_(volume) {
  SetName("General volume");
  Bind(wxEVT_SLIDER, [this](wxCommandEvent&) { setVolume(static_cast<float>(GetValue()) / kSteps); });
  Bind(wxEVT_LEFT_DCLICK, [this](wxMouseEvent&) { setVolume(1); });
  follow();
}

void VolumeSlider::setVolume(float factor) {
  volume_ = factor;
  follow();
}

void VolumeSlider::follow() {
  const float factor = volume_;
  if (factor == shown_) return;
  shown_ = factor;
  const int position = static_cast<int>(std::lround(kSteps * std::clamp(factor, 0.0f, 2.0f)));
  if (position != GetValue()) SetValue(position);
  SetToolTip("General volume: " + volumeText(factor) + ". A double click makes it 0 dB.");
}

// ---- Buttons --------------------------------------------------------------------------------------------

TransportBar::TransportBar(wxWindow* parent, const ActionMenus& menus, std::atomic<float>& volume)
    : wxToolBar(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                wxTB_FLAT | wxTB_HORIZONTAL | wxTB_NODIVIDER | wxTB_NOALIGN),
      menus_(menus) {
  SetToolBitmapSize(FromDIP(wxSize(kIconSize, kIconSize)));
  const wxColour colour = wxSystemSettings::GetColour(wxSYS_COLOUR_BTNTEXT);
  for (const std::string id : kButtons) {
    if (id.empty()) {
      AddSeparator();
      continue;
    }
    const Action& action = menus.action(id);
    AddTool(menus.numberOf(id), toWx(plainText(action)), icon(id, colour), wxNullBitmap,
            action.checked ? wxITEM_CHECK : wxITEM_NORMAL, toolHint(action), toWx(action.help));
  }
  AddSeparator();
  AddControl(new wxStaticText(this, wxID_ANY, "Volume "));
  volume_ = new VolumeSlider(this, volume);
  AddControl(volume_);
  Realize();
  Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
    showIcons();
    event.Skip();
  });
}

void TransportBar::showIcons() {
  const wxColour colour = wxSystemSettings::GetColour(wxSYS_COLOUR_BTNTEXT);
  for (const std::string id : kButtons) {
    if (!id.empty()) SetToolNormalBitmap(menus_.numberOf(id), icon(id, colour));
  }
  if (marked_) SetToolNormalBitmap(menus_.numberOf("record"), icon("record", Theme::current().clip));
}

void TransportBar::showKeys() {
  for (const std::string id : kButtons) {
    if (!id.empty()) SetToolShortHelp(menus_.numberOf(id), toolHint(menus_.action(id)));
  }
}

void TransportBar::follow(bool marked) {
  volume_->follow();
  if (std::exchange(marked_, marked) != marked) showIcons();
  for (const std::string id : kButtons) {
    if (id.empty()) continue;
    const Action& action = menus_.action(id);
    const int number = menus_.numberOf(id);
    const bool enabled = !action.enabled || action.enabled();
    if (enabled != GetToolEnabled(number)) EnableTool(number, enabled);
    // The toolkit presses a button by itself when it is clicked.
    if (action.checked && action.checked() != GetToolState(number)) ToggleTool(number, action.checked());
  }
}

}  // namespace plumetta
