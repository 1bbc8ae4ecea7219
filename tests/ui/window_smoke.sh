#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Opens a file in the real window on a virtual display, cuts everything, undoes it, saves, wants to play without a
# sound server and leaves, all by keys, comes back to it, and holds the saved samples against the original ones. Call: window_smoke.sh PROGRAM
# Exit status 77: the tools for it are missing.
set -u

program=$1
for tool in Xvfb xdotool python3; do
  command -v "$tool" >/dev/null || { echo "skipped: no $tool"; exit 77; }
done

folder=$(mktemp -d)
xvfb_pid= program_pid= manager_pid=
finish() {
  for pid in $program_pid $manager_pid $xvfb_pid; do kill "$pid" 2>/dev/null && wait "$pid" 2>/dev/null; done
  rm -rf "$folder"
}
trap finish EXIT

fail() {
  echo "FAILED: $1"
  echo "windows:"; window_names
  echo "said:"; cat "$folder/said" 2>/dev/null
  exit 1
}

# wait_for SECONDS COMMAND...: until the command succeeds.
wait_for() {
  local tries=$(($1 * 10)); shift
  until "$@" >/dev/null 2>&1; do
    tries=$((tries - 1))
    [ $tries -gt 0 ] || return 1
    sleep 0.1
  done
}

window_names() {
  local window
  for window in $(xdotool search --onlyvisible --pid "$program_pid" --name . 2>/dev/null); do
    xdotool getwindowname "$window"
  done
}
title_is() { window_names | grep -qxF -- "$1 – Plumetta"; }
box_is_up() { window_names | grep -qxF "Plumetta"; }
box_is_gone() { ! box_is_up; }
has_ended() { ! kill -0 "$program_pid" 2>/dev/null; }
# Waits for events: a program that wants the processor and doesn't get it is not asleep.
idle() {
  local look
  for look in 1 2 3 4 5 6 7 8 9 10; do
    [ "$(sed 's/.*) \(.\).*/\1/' "/proc/$program_pid/stat")" = S ] || return 1
    sleep 0.1
  done
}
focus() {  # the window of that title, once all is drawn and a panel has the focus
  local window
  window=$(xdotool search --onlyvisible --pid "$program_pid" --name "$1" | head -1)
  xdotool windowfocus --sync "$window" 2>/dev/null
  wait_for 60 idle || fail "the window never comes to rest"
}
press() { xdotool key --clearmodifiers "$@"; }

# A display of its own: the server picks a free number and tells it.
Xvfb -displayfd 3 -screen 0 1200x800x24 -nolisten tcp 3>"$folder/display" 2>/dev/null &
xvfb_pid=$!
wait_for 60 test -s "$folder/display" || fail "no virtual display"
export DISPLAY=:$(cat "$folder/display") GDK_BACKEND=x11 NO_AT_BRIDGE=1
export PULSE_SERVER=unix:$folder/none  # playing ends in the same message everywhere
if command -v openbox >/dev/null; then
  openbox >/dev/null 2>&1 &
  manager_pid=$!
fi

python3 - "$folder/tone.wav" <<'PYTHON'
import struct, sys
frames, rate = 30000, 44100
data = b"".join(struct.pack("<hh", (i * 37) % 20000 - 10000, -((i * 11) % 9000)) for i in range(frames))
fmt = struct.pack("<HHIIHH", 1, 2, rate, rate * 4, 4, 16)
chunks = b"fmt " + struct.pack("<I", len(fmt)) + fmt + b"data" + struct.pack("<I", len(data)) + data
open(sys.argv[1], "wb").write(b"RIFF" + struct.pack("<I", 4 + len(chunks)) + b"WAVE" + chunks)
PYTHON
cp "$folder/tone.wav" "$folder/original.wav"

"$program" --home "$folder/home" "$folder/tone.wav" >"$folder/said" 2>&1 &
program_pid=$!
wait_for 60 title_is "tone.wav" || fail "the title does not name the file"
focus tone.wav

press ctrl+a
press ctrl+x
wait_for 60 title_is "*tone.wav" || fail "the cut left no mark of changes"
if command -v xclip >/dev/null; then
  timeout 60 xclip -selection clipboard -t audio/x-wav -o >"$folder/clipboard" 2>/dev/null
  # A header of 48 bytes, and every stereo frame of 16 bits but the last.
  size=$(wc -c <"$folder/clipboard")
  [ "$size" -eq $((48 + 29999 * 4)) ] || fail "the system clipboard holds $size bytes"
fi
press ctrl+z
press ctrl+s
wait_for 60 title_is "tone.wav" || fail "still marked as changed after saving"
press space
wait_for 60 box_is_up || fail "nothing tells that there is no sound server"
press Return
wait_for 60 box_is_gone || fail "the message stays"
focus tone.wav
press ctrl+q
wait_for 60 has_ended || fail "the window did not close"
wait "$program_pid"; status=$?
[ $status -eq 0 ] || fail "exit status $status"

# Without a file the one of last time is opened again.
"$program" --home "$folder/home" >>"$folder/said" 2>&1 &
program_pid=$!
wait_for 60 title_is "tone.wav" || fail "the file of last time was not opened again"
focus tone.wav
press ctrl+q
wait_for 60 has_ended || fail "the window did not close again"

python3 - "$folder/original.wav" "$folder/tone.wav" <<'PYTHON' || fail "the saved samples differ"
import sys
def chunks(path):
    content = open(path, "rb").read()
    at, found = 12, {}
    while at + 8 <= len(content):
        size = int.from_bytes(content[at + 4:at + 8], "little")
        found[content[at:at + 4]] = content[at + 8:at + 8 + size]
        at += 8 + size + size % 2
    return found
before, after = chunks(sys.argv[1]), chunks(sys.argv[2])
if before[b"fmt "][:16] != after[b"fmt "][:16] or before[b"data"] != after[b"data"]:
    sys.exit(1)
# The file must have been written by the program, or equal samples prove nothing.
sys.exit(0 if b"ETTA" in after else "not written")
PYTHON
echo "passed"
