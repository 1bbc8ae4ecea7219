// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace plumetta {

// Private-profile (INI) files, with the platform's own functions where it has them and the same reading rules
// elsewhere: names compare without case, blanks around keys and values go, one pair of quotes around a value
// goes, the first of two equal keys counts.

std::string readProfileString(const std::string& path, const std::string& section, const std::string& key,
                              const std::string& fallback);
// Leading blanks and a sign are taken, then digits up to the first other character; hexadecimal after "0x".
int readProfileInt(const std::string& path, const std::string& section, const std::string& key, int fallback);
// The number that an integer read finds in a value; 0 when it doesn't begin with one.
int parseProfileInt(const std::string& value);
// Whether two section or key names are the same one.
bool sameProfileName(std::string_view a, std::string_view b);
// Replaces or adds one key and leaves every other line as it stands. False when the file can't be written.
bool writeProfileString(const std::string& path, const std::string& section, const std::string& key,
                        const std::string& value);

}  // namespace plumetta
