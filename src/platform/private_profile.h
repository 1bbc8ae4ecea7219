// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace plumetta {

// Private-profile (INI) files, with the platform's own functions where it has them and the same reading rules
// elsewhere: names compare without case, blanks around keys and values go, one pair of quotes around a value
// goes, the first of two equal keys counts. A file that is no profile at all has no keys.

struct ProfileName {
  std::string section;
  std::string key;
};

struct ProfileEntry {
  ProfileName name;
  std::string value;
};

// The values of many keys, in the order of `names`; none for a key that is missing.
std::vector<std::optional<std::string>> readProfileStrings(const std::string& path,
                                                           const std::vector<ProfileName>& names);
// The names of all sections, in the order of the file.
std::vector<std::string> profileSections(const std::string& path);
std::string readProfileString(const std::string& path, const std::string& section, const std::string& key,
                              const std::string& fallback);
// Leading blanks and a sign are taken, then digits up to the first other character; hexadecimal after "0x".
int readProfileInt(const std::string& path, const std::string& section, const std::string& key, int fallback);
// The number that an integer read finds in a value; 0 when it doesn't begin with one.
int parseProfileInt(const std::string& value);
// A value as reading takes it from the text behind the equals sign: without blanks and quotes around it.
std::string profileValueOf(std::string_view text);
// The text from which reading takes `value`: in quotes where it would lose its own or its blanks. The value
// must not hold line ends.
std::string profileTextOf(const std::string& value);
// Whether two section or key names are the same one.
bool sameProfileName(std::string_view a, std::string_view b);
// Replaces or adds keys and leaves every other line as it stands. The file is replaced as a whole, so that a
// crash leaves the old one or the new one. False when it can't be written; nothing has changed then.
bool writeProfileStrings(const std::string& path, const std::vector<ProfileEntry>& entries);
bool writeProfileString(const std::string& path, const std::string& section, const std::string& key,
                        const std::string& value);

}  // namespace plumetta
