// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

class wxWindow;

namespace plumetta {

enum class SaveAnswer { save, saveAll, discard, cancel };

// What shall become of the unsaved changes of a document that is to be closed. `several`: others with unsaved
// changes follow, and all can be saved at once.
SaveAnswer askToSave(wxWindow* parent, const std::string& title, bool several);

}  // namespace plumetta
