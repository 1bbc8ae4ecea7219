// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/toolbar_icons.h"

#include <map>
#include <stdexcept>

namespace plumetta {
namespace {

// Drawn on a field of 24 by 24 with lines of 1.7, in the colour of the stroke.
const std::map<std::string, const char*>& drawings() {
  static const std::map<std::string, const char*> all{
      {"new",
       "<path d='M6 3.5h8l4.5 4.5v12.5h-12.5z'/><path d='M14 3.5v4.5h4.5'/><path d='M9 14.5h6.5M12.25 "
       "11.25v6.5'/>"},
      {"open", "<path d='M3.5 19v-13.5h6l2 2.5h7v3'/><path d='M3.5 19l3-8h15l-3 8z'/>"},
      {"save", "<path d='M4 4h13l3 3v13h-16z'/><path d='M8 4v5h7v-5'/><path d='M7.5 20v-7h9v7'/>"},
      {"undo", "<path d='M4 9h10.5a5.25 5.25 0 0 1 0 10.5h-4'/><path d='M8.5 4.5l-4.5 4.5l4.5 4.5'/>"},
      {"redo", "<path d='M20 9h-10.5a5.25 5.25 0 0 0 0 10.5h4'/><path d='M15.5 4.5l4.5 4.5l-4.5 4.5'/>"},
      {"cut",
       "<circle cx='6.5' cy='18' r='2.6'/><circle cx='17.5' cy='18' r='2.6'/>"
       "<path d='M8 15.8l8.5-12.3M16 15.8l-8.5-12.3'/>"},
      {"copy", "<path d='M8.5 8.5h11.5v12h-11.5z'/><path d='M15.5 8.5v-5h-11.5v12h4.5'/>"},
      {"paste",
       "<path d='M9 5h-4v15.5h14v-15.5h-4'/><path d='M9 3.5h6v3.5h-6z'/><path d='M8.5 13.5h2l1.25-3l2 "
       "6l1.25-3h1'/>"},
      {"delete", "<path d='M4.5 6.5h15M9.5 6.5v-3h5v3M6.5 6.5l.8 14h9.4l.8-14M10.25 10.5v6M13.75 10.5v6'/>"},
      {"trim", "<path d='M6.5 2.5v15h15'/><path d='M2.5 6.5h15v15'/>"},
      {"zoom-in", "<circle cx='10.5' cy='10.5' r='6.5'/><path d='M15.5 15.5l5 5M7.5 10.5h6M10.5 7.5v6'/>"},
      {"zoom-out", "<circle cx='10.5' cy='10.5' r='6.5'/><path d='M15.5 15.5l5 5M7.5 10.5h6'/>"},
      {"zoom-selection",
       "<path d='M3.5 8v-4.5h4.5M16 3.5h4.5v4.5M20.5 16v4.5h-4.5M8 20.5h-4.5v-4.5'/>"
       "<path d='M8 10v4M12 7.5v9M16 10v4'/>"},
      {"back-to-start", "<path d='M5.5 5v14M18.5 5v14l-10-7z'/>"},
      {"rewind", "<path d='M11.5 6v12l-8-6zM20.5 6v12l-8-6z'/>"},
      {"play", "<path d='M7 4.5l12 7.5l-12 7.5z'/>"},
      {"play-all", "<path d='M4 5v14M9 5l10 7l-10 7zM21 5v14'/>"},
      {"pause", "<path d='M7 5h3v14h-3zM14 5h3v14h-3z'/>"},
      {"stop", "<path d='M6 6h12v12h-12z'/>"},
      {"forward", "<path d='M3.5 6v12l8-6zM12.5 6v12l8-6z'/>"},
      {"loop",
       "<path d='M6 17a6 6 0 0 1 0-10h12'/><path d='M15 4l3 3l-3 3'/>"
       "<path d='M18 7a6 6 0 0 1 0 10h-12'/><path d='M9 20l-3-3l3-3'/>"},
      {"record", "<circle cx='12' cy='12' r='6.5'/><circle cx='12' cy='12' r='2.5'/>"},
      {"monitor",
       "<path d='M9 4.5a3 3 0 0 1 6 0v6a3 3 0 0 1-6 0z'/><path d='M5.5 10.5a6.5 6.5 0 0 0 13 0M12 "
       "17v4M8.5 21h7'/>"},
      {"rack",
       "<path d='M4 4h16v16h-16zM4 9.3h16M4 14.7h16'/><path d='M7 6.7h5M7 12h5M7 17.3h5M16.5 "
       "6.7h.2M16.5 12h.2M16.5 17.3h.2'/>"},
      {"rack-on",
       "<path d='M2.5 12h4.5M17 12h4.5'/><path d='M7 6h10v12h-10z'/><path d='M9.5 14.5l2-5l1.5 4l1.5-2.5'/>"},
      {"zoom-all", "<path d='M3 4v16M21 4v16M6.5 12h11'/><path d='M9.5 9l-3 3l3 3M14.5 9l3 3l-3 3'/>"},
  };
  return all;
}

constexpr const char* kMark =
    "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 64 64'>"
    "<rect x='2' y='2' width='60' height='60' rx='14' fill='#14525c'/>"
    "<path d='M14 52C16 30 28 14 52 11C51 32 40 45 21 45' fill='#e9f4f2'/>"
    "<path d='M12 54C20 40 30 28 43 20' fill='none' stroke='#14525c' stroke-width='3' "
    "stroke-linecap='round'/>"
    "<path d='M29 31.5v10M36 25.5v13' fill='none' stroke='#14525c' stroke-width='2.4' "
    "stroke-linecap='round'/>"
    "</svg>";

}  // namespace

wxBitmapBundle toolbarIcon(const std::string& id, const wxColour& colour, const wxSize& size) {
  const auto found = drawings().find(id);
  if (found == drawings().end()) throw std::logic_error("no drawing for " + id);
  const std::string svg =
      "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 24 24'><g fill='none' stroke='" +
      colour.GetAsString(wxC2S_HTML_SYNTAX).utf8_string() +
      "' stroke-width='1.7' stroke-linecap='round' stroke-linejoin='round'>" + found->second + "</g></svg>";
  return wxBitmapBundle::FromSVG(svg.c_str(), size);
}

wxBitmapBundle programMark(const wxSize& size) { return wxBitmapBundle::FromSVG(kMark, size); }

wxIconBundle programIcons() {
  wxIconBundle icons;
  for (const int side : {16, 24, 32, 48, 64, 128}) {
    icons.AddIcon(programMark(wxSize(side, side)).GetIcon(wxSize(side, side)));
  }
  return icons;
}

}  // namespace plumetta
