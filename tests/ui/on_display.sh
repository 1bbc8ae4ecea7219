#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Usage: on_display.sh COMMAND...
# Runs it on a virtual display of its own. Exit status 77: there can be none.
set -eu

command -v xvfb-run >/dev/null || { echo "skipped: no xvfb-run"; exit 77; }
export GDK_BACKEND=x11 NO_AT_BRIDGE=1
exec xvfb-run -a -s "-screen 0 1200x800x24 -nolisten tcp" "$@"
