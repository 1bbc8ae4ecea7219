// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/plumetta_app.h"

using plumetta::PlumettaApp;
wxIMPLEMENT_APP(PlumettaApp);
