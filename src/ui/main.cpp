// SPDX-License-Identifier: GPL-3.0-or-later
#include <clocale>
#include <cstdlib>

#include "ui/plumetta_app.h"

using plumetta::PlumettaApp;

#ifdef __WXMSW__
wxIMPLEMENT_APP(PlumettaApp);
#else
wxIMPLEMENT_APP_NO_MAIN(PlumettaApp);

int main(int argc, char** argv) {
  // In a locale of single bytes (a bare "C" from a script) file dialogs could not name files in UTF-8.
  if (std::setlocale(LC_ALL, "") == nullptr || MB_CUR_MAX == 1) {
    setenv("LC_ALL", "C.UTF-8", 1);
    std::setlocale(LC_ALL, "");
  }
  // Plug-ins put their editors into windows of X11 alone; other display systems mostly serve these as well.
  if (std::getenv("DISPLAY") != nullptr) setenv("GDK_BACKEND", "x11", 0);
  wxDISABLE_DEBUG_SUPPORT();
  return wxEntry(argc, argv);
}
#endif
