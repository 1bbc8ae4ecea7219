// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "batch/batch_plan.h"

namespace plumetta {

// What stands behind the last dot of a name, in lower case; empty without a dot.
std::string lowerExtension(const std::string& name);

// The name with everything behind its last dot replaced by the extension, or with it appended to one without.
std::string nameWithExtension(const std::string& name, const std::string& extension);

// Gives the files of one folder, in their order, the names of their results. Where several would get the
// same, the one that bears it already keeps it, else the first that looks like audio; the others' whole names
// get the extension: "take.mp3.wav".
void nameResults(FileSystem& files, const std::string& folder, const std::string& extension,
                 std::vector<BatchEntry*>& entries);

}  // namespace plumetta
