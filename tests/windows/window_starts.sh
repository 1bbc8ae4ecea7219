#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Usage: window_starts.sh PLUMETTA.exe [SCREENSHOT.png [CLIPBOARD_PROBE.exe]]
# Starts the editor under Wine on a display of its own with a sound file, waits for a window that names the file, and
# closes it as a person would. Fails when no window comes, or when the program doesn't end. With a second program at
# the clipboard, audio also has to reach it and come back.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
built=$1
program=plumetta.exe
picture=${2:-$(dirname "$built")/window.png}
probe=${3:-}
folder=$(mktemp -d)
name=Glöckchen

fail() {
  echo "$1" >&2
  tail -n 20 "$folder/output" >&2 || true
  exit 1
}

# Waits until COMMAND succeeds, for at most as many seconds.
within() {  # SECONDS COMMAND...
  local until=$((SECONDS + $1))
  shift
  until "$@"; do
    ((SECONDS < until)) || return 1
    sleep 0.5
  done
}

titled() { xdotool search --onlyvisible --name "$name" >"$folder/window" 2>/dev/null && [[ -s $folder/window ]]; }
ended() { ! kill -0 "$editor" 2>/dev/null; }

at_clipboard() { (cd "$folder" && "$root/tools/windows/wine-run" probe.exe "$@") >>"$folder/output" 2>&1; }
copied() {
  xdotool windowfocus "$(head -n 1 "$folder/window")" key ctrl+a key ctrl+c
  at_clipboard read copied.bin &&
    python3 "$root/tests/windows/compare_clipboard.py" "$folder/$name.wav" "$folder/copied.bin" 2>>"$folder/output"
}
asked() { xdotool search --onlyvisible --name "Save changes" >/dev/null 2>&1; }
pasted() { xdotool search --onlyvisible --name "paste from clipboard" >/dev/null 2>&1; }

# A menu that opens late misses its key.
paste() { xdotool key Escape key Escape key alt+e sleep 1 key y && within 10 pasted; }

exchange_audio() {
  cp "$probe" "$folder/probe.exe"
  within 120 copied || fail "What was copied does not lie on the system clipboard."
  at_clipboard write "$name.wav" || fail "The clipboard does not take a wave."
  within 120 paste || { import -window root "$picture"; fail "What lies on the system clipboard is not pasted."; }
}

# A Wine folder of its own too: one whose background processes were started elsewhere belongs to another display.
export PLUMETTA_WINEPREFIX=$root/build/windows/wine-window
unset PLUMETTA_WINE_STARTED
stop_wine() { WINEPREFIX=$PLUMETTA_WINEPREFIX "$(command -v wineserver || echo /usr/lib/wine/wineserver)" -k || true; }

# The display's server picks a free number and tells it.
mkfifo "$folder/display"
Xvfb -displayfd 4 -screen 0 1280x800x24 -nolisten tcp 4>"$folder/display" >"$folder/xvfb" 2>&1 &
server=$!
editor=
cleanup() {
  [[ -z $editor ]] || kill -9 "$editor" 2>/dev/null || true
  kill "$server" 2>/dev/null || true
  stop_wine
  rm -rf "$folder"
}
trap cleanup EXIT
read -r -t 60 number <"$folder/display" || fail "Xvfb does not start."
export DISPLAY=:$number

# In a folder of its own, the program keeps its settings beside itself and finds none.
cp "$built" "$folder/$program"
"$root/tools/make_demo" "$folder/$name.wav"
(cd "$folder" && exec "$root/tools/windows/wine-run" "$program" "$name.wav") >"$folder/output" 2>&1 &
editor=$!

within 180 titled || { import -window root "$picture" || true; fail "No window names $name.wav."; }
sleep 2  # for the first drawing
import -window root "$picture"
ended && fail "The program ended on its own."
[[ -z $probe ]] || exchange_audio
# As the taskbar does it: asked to close, not killed.
"$root/tools/windows/wine-run" taskkill.exe /im "$program" >>"$folder/output" 2>&1 || fail "Closing did not reach it."
if [[ -n $probe ]]; then within 60 asked || fail "Closing does not ask about what was pasted."; fi
declined() {
  if asked; then xdotool key alt+d; fi
  ended
}
within 120 declined || fail "The program does not end when its window is closed."
status=0
wait "$editor" || status=$?
editor=
[[ $status -eq 0 ]] || fail "The program ended with $status."
echo "A window named $name.wav; its picture is $picture"
