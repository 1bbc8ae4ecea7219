// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/bmpbndl.h>
#include <wx/colour.h>
#include <wx/iconbndl.h>

#include <string>

namespace plumetta {

// The drawing of an action, in one colour and sharp at any scale. `id` is that of the action.
wxBitmapBundle toolbarIcon(const std::string& id, const wxColour& colour, const wxSize& size);
// The mark of the program.
wxBitmapBundle programMark(const wxSize& size);
wxIconBundle programIcons();

}  // namespace plumetta
