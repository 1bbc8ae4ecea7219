// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/string.h>

#include <string>

namespace plumetta {

// Between the UTF-8 of everything below the window and the toolkit's strings. Bytes that are no UTF-8 (an old
// file name) are shown as Latin-1 rather than not at all.
inline wxString toWx(const std::string& text) {
  const wxString converted = wxString::FromUTF8(text);
  return converted.empty() && !text.empty() ? wxString(text.c_str(), wxConvISO8859_1) : converted;
}
inline std::string fromWx(const wxString& text) { return text.utf8_string(); }

}  // namespace plumetta
