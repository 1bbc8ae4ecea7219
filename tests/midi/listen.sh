#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Sends MIDI messages over a JACK server of its own to `midi listen` and looks at what it prints; ends the
# server while it listens. Call: listen.sh PLUMETTA-CLI MIDI-SENDER
# Exit status 77: there is no jackd, or it can't run here.
set -u

cli=$1 sender=$2
command -v jackd >/dev/null || { echo "skipped: no jackd"; exit 77; }
folder=$(mktemp -d)
export JACK_DEFAULT_SERVER=plumetta-test-$$ JACK_NO_AUDIO_RESERVATION=1
pids=()
finish() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null && wait "$pid" 2>/dev/null; done
  rm -rf "$folder"
}
trap finish EXIT
fail() { echo "FAILED: $1"; head -50 "$folder"/*.{out,err} 2>/dev/null; exit 1; }
wait_for() {  # wait_for SECONDS COMMAND...
  local tries=$(($1 * 10)); shift
  until "$@" >/dev/null 2>&1; do tries=$((tries - 1)); [ $tries -gt 0 ] || return 1; sleep 0.1; done
}
lines_are() { [ "$(wc -l <"$2")" -ge "$1" ]; }
has_ended() { ! kill -0 "$1" 2>/dev/null; }
listen() { exec timeout 120 "$cli" --home "$folder/home" midi listen "$@"; }

# Synchronous and patient: on a busy machine the server waits for its clients rather than dropping what they send.
jackd -n "$JACK_DEFAULT_SERVER" -r -S -t 5000 -d dummy -r 48000 -p 2048 >"$folder/jackd.out" 2>&1 &
server=$!
pids+=("$server")
wait_for 20 grep -q "self-connect-mode" "$folder/jackd.out"
kill -0 "$server" 2>/dev/null || { cat "$folder/jackd.out"; echo "skipped: jackd does not run"; exit 77; }

"$cli" --home "$folder/home" settings set MidiInCommand MidiCommandStop 10 || fail "settings set"
mkfifo "$folder/first" "$folder/second" "$folder/third"
"$sender" First <"$folder/first" >"$folder/first.out" 2>"$folder/first.err" &
pids+=($!)
first=$!
exec 3>"$folder/first"
wait_for 20 grep -q ready "$folder/first.out" || fail "the first port is not there"
"$sender" Second <"$folder/second" >"$folder/second.out" 2>"$folder/second.err" &
pids+=($!)
second=$!
exec 4>"$folder/second"
wait_for 20 grep -q ready "$folder/second.out" || fail "the second port is not there"

# A controller on two channels, one with two commands, a note, an unknown controller, volume and pan.
listen --seconds 12 >"$folder/all.out" 2>"$folder/all.err" &
listener=$!
pids+=($!)
printf '176 10 127\n191 13 0\n144 10 100\n176 99 1\n176 40 64\n' >&3
printf '176 41 127\n' >&4
wait "$listener"; status=$?
[ $status -eq 0 ] || fail "status $status"
exec 3>&- 4>&-
wait_for 60 has_ended "$first" && wait_for 60 has_ended "$second" || fail "the senders stay"
printf '%s\n' "MidiCommandPan 127" "MidiCommandPlay 127" "MidiCommandRecord 0" "MidiCommandVolume 64" >"$folder/expected"
sort "$folder/all.out" | cmp - "$folder/expected" || fail "other commands than were sent"
[ ! -s "$folder/all.err" ] || fail "something was said besides"

# No such device; a server that goes while somebody listens.
(listen --device 7 --seconds 1) >"$folder/none.out" 2>"$folder/none.err" && fail "a device that is not there was opened"
grep -qx "message: Unable to start midi in driver" "$folder/none.err" || fail "the message of a missing device"
"$sender" Third <"$folder/third" >"$folder/third.out" 2>/dev/null &
pids+=($!)
exec 5>"$folder/third"
wait_for 20 grep -q ready "$folder/third.out" || fail "the third port is not there"
listen --device 0 --seconds 10 >"$folder/gone.out" 2>"$folder/gone.err" &
listener=$!
pids+=($!)
echo 176 10 1 >&5
wait_for 60 lines_are 1 "$folder/gone.out" || fail "the third port is not heard"
kill "$server"; wait "$server" 2>/dev/null
wait "$listener"; status=$?
[ $status -eq 0 ] || fail "status $status after the server had gone"
(listen --seconds 1) >"$folder/alone.out" 2>"$folder/alone.err"; status=$?
[ $status -eq 1 ] || fail "status $status without a server"
[ "$(cat "$folder/alone.err")" = "message: There is no MIDI input device." ] || fail "the message without a server"
echo "passed"
