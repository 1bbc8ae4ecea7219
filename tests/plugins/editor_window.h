// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// A bare child window of somebody's, as editors of plug-ins make it; null when it can't be. Where the
// system's own library would be a dependency there is no window, and the parent itself stands for it.
void* openEditorWindow(void* parent, int width, int height);
void closeEditorWindow(void* window);

}  // namespace plumetta
