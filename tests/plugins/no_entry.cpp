// SPDX-License-Identifier: GPL-3.0-or-later
// A library that is no plug-in.

extern "C" int somethingElse() { return 1; }
