# SPDX-License-Identifier: GPL-3.0-or-later
# Sourced by the tests of packages: a display of their own and a window on it that is opened and closed as a person would.

fail() { echo "$*" >&2; exit 1; }

# Waits until COMMAND succeeds, for at most as many seconds.
within() {  # SECONDS COMMAND...
  local until=$((SECONDS + $1))
  shift
  until "$@"; do
    ((SECONDS < until)) || return 1
    sleep 0.5
  done
}

# Sets DISPLAY; the server ends with the script that calls stop_display.
start_display() {
  local told
  told=$(mktemp)
  Xvfb ${PLUMETTA_TEST_DISPLAY:-} -displayfd 3 -screen 0 1280x800x24 -ac -nolisten tcp 3>"$told" >/dev/null 2>&1 </dev/null &
  display_server=$!
  within 60 test -s "$told" || fail "The virtual display did not start."
  DISPLAY=:$(<"$told")
  export DISPLAY
  rm -f "$told"
}
stop_display() { [[ -z ${display_server:-} ]] || kill "$display_server" 2>/dev/null || true; }

window_is_up() { xdotool search --onlyvisible --name "$1" >/dev/null 2>&1; }
has_ended() { ! kill -0 "$1" 2>/dev/null; }

# Starts COMMAND, waits for a window that names TITLE, takes its PICTURE and has `close_window` close it.
open_and_close() {  # TITLE PICTURE COMMAND...
  local title=$1 picture=$2 editor
  shift 2
  "$@" >/dev/null 2>&1 </dev/null &
  editor=$!
  within 300 window_is_up "$title" || { import -window root "$picture"; fail "No window shows $title; see $picture"; }
  sleep 2
  import -window root "$picture"
  # A window that is busy may miss the first time.
  close_and_look() { close_window "$title" || true; within 10 has_ended "$editor"; }
  within 180 close_and_look || { kill "$editor"; fail "The window does not close."; }
  wait "$editor" || fail "The editor ended with $?"
}
