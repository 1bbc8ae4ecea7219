#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Usage: on_display.sh COMMAND...
# Runs it on a virtual display of its own. Exit status 77: there can be none.
set -eu

command -v xvfb-run >/dev/null || { echo "skipped: no xvfb-run"; exit 77; }
export GDK_BACKEND=x11 NO_AT_BRIDGE=1
# A Wine folder of its own too: one whose background processes were started elsewhere belongs to another display.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
export PLUMETTA_WINEPREFIX=$root/build/windows/wine-display
unset PLUMETTA_WINE_STARTED
stop_wine() {
  [[ ! -d $PLUMETTA_WINEPREFIX ]] ||
    WINEPREFIX=$PLUMETTA_WINEPREFIX "$(command -v wineserver || echo /usr/lib/wine/wineserver)" -k || true
}
trap stop_wine EXIT
xvfb-run -a -s "-screen 0 1200x800x24 -nolisten tcp" "$@"
