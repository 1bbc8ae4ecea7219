// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/aui/framemanager.h>

namespace plumetta {

// Spares a manager of panes to draw captions and sashes where only its panes have something to draw. GTK asks
// every parent of a window that is drawn, sixty times a second while something plays.
void skipCoveredPaint(wxAuiManager& panes);

}  // namespace plumetta
