// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme.h"

#include <wx/settings.h>

#include "ui/plumetta_app.h"

namespace plumetta {
namespace {

wxColour tinted(const Palette& palette, Tint tint) { return toWx(palette[tint], tintRow(tint).opacity); }

}  // namespace

Theme::Theme(const Palette& palette)
    : dark(palette.dark()),
      lane(tinted(palette, Tint::lane)),
      laneSelected(tinted(palette, Tint::laneSelected)),
      margin(tinted(palette, Tint::margin)),
      line(tinted(palette, Tint::line)),
      grid(tinted(palette, Tint::grid)),
      zero(tinted(palette, Tint::zero)),
      text(tinted(palette, Tint::text)),
      textQuiet(tinted(palette, Tint::textQuiet)),
      accent(tinted(palette, Tint::accent)),
      peak(tinted(palette, Tint::peak)),
      rms(tinted(palette, Tint::rms)),
      peakSelected(tinted(palette, Tint::peakSelected)),
      rmsSelected(tinted(palette, Tint::rmsSelected)),
      peakOff(tinted(palette, Tint::peakOff)),
      rmsOff(tinted(palette, Tint::rmsOff)),
      clip(tinted(palette, Tint::clip)),
      cursor(tinted(palette, Tint::cursor)),
      playCursor(tinted(palette, Tint::playCursor)),
      marker(tinted(palette, Tint::marker)),
      markerText(tinted(palette, Tint::markerText)),
      loop(tinted(palette, Tint::loop)),
      envelope(tinted(palette, Tint::envelope)) {
  for (size_t i = 0; i < curves.size(); ++i) {
    curves[i] = tinted(palette, static_cast<Tint>(static_cast<size_t>(Tint::curve1) + i));
  }
}

Theme Theme::current() { return Theme(Palette(wornSkin(), systemIsDark())); }

bool systemIsDark() { return wxSystemSettings::GetAppearance().IsDark(); }

wxColour toWx(Rgb colour, uint8_t opacity) { return {colour.red, colour.green, colour.blue, opacity}; }

Rgb rgbOf(const wxColour& colour) { return {colour.Red(), colour.Green(), colour.Blue()}; }

const Skin& wornSkin() { return editorApp().skin; }

void wearSkin(const Skin& skin) {
  editorApp().skin = skin;
  for (wxWindow* window : wxTopLevelWindows) {
    wxSysColourChangedEvent event;
    event.SetEventObject(window);
    window->HandleWindowEvent(event);
  }
}

}  // namespace plumetta
