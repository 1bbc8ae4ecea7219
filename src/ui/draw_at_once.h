// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/graphics.h>
#include <wx/window.h>

#include <functional>

namespace plumetta {

// Draws a part of a window at once, where the toolkit would have every parent of the window draw first: dear
// for what moves sixty times a second. `paint` must cover the whole part. Where the system can't draw between
// its rounds of painting, or loses nothing by them, the part waits for the next one.
void drawAtOnce(wxWindow& window, const wxRect& part, const std::function<void(wxGraphicsContext&)>& paint);

}  // namespace plumetta
