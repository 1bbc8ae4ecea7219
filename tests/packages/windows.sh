#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Usage: windows.sh SETUP.exe STAGE  Installs for everybody and for one person into a fresh Windows folder of Wine's, edits
# a file and opens the window there, and uninstalls again: files and registry have to be as they were, but for what the
# person has made. STAGE is the folder of what the installer holds.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source "$here/window.sh"
setup=$(realpath "$1") stage=$(realpath "$2")
folder=$(dirname "$setup")
run=$here/../../tools/windows/wine-run
scratch=$(mktemp -d)
export PLUMETTA_WINEPREFIX=$scratch/wine
unset PLUMETTA_WINE_STARTED
server=$(command -v wineserver || echo /usr/lib/wine/wineserver)
trap 'WINEPREFIX=$PLUMETTA_WINEPREFIX "$server" -k || true; stop_display; rm -rf "$scratch"' EXIT
drive=$PLUMETTA_WINEPREFIX/drive_c

# Files, and keys of software with their values, once all has come to rest. Neither the uninstaller's copy of itself,
# which Windows deletes at its next start, nor what Wine notes of fonts and displays is meant.
snapshot() {
  WINEPREFIX=$PLUMETTA_WINEPREFIX "$server" -w
  (cd "$drive" && find . ! -path '*/Temp/*' | sort)
  sed -E 's/^(\[.*\]) [0-9]+$/\1/; /^#time=/d; /^$/d' "$PLUMETTA_WINEPREFIX"/{user,system}.reg |
    awk '/^\[/ {meant = /^\[Software/ && !/Wine|Fonts/} meant'
}

# Prints the path of a DLL that is needed but neither of Windows nor of ours.
foreign_needs() {
  local file name
  for file in "$1"/*.exe "$1"/*.dll; do
    for name in $(x86_64-w64-mingw32-objdump -p "$file" | sed -n 's/.*DLL Name: //p'); do
      [[ -f $drive/windows/system32/${name,,} || -f $1/$name ]] || echo "$file needs $name"
    done
  done
}

cycle() {  # WORD FOLDER
  local word=$1 installed=$drive/$2 missing own
  snapshot >"$scratch/before"
  "$run" "$setup" /S "$word" || fail "The installer ended with $?"
  snapshot >"$scratch/between"
  missing=$(cd "$stage" && find . -type f | while read -r file; do cmp -s "$file" "$installed/$file" || echo "$file"; done)
  [[ -z $missing ]] || fail "Not installed: $missing"
  [[ -z $(foreign_needs "$installed") ]] || fail "$(foreign_needs "$installed")"
  grep -qi 'Start Menu/Programs/Plumetta.lnk$' "$scratch/between" || fail "There is no entry in the start menu."
  grep -qE '^"Plumetta\.[a-z0-9]+"=""' "$scratch/between" || fail "No type of file knows the editor."
  (cd "$installed" && use)
  # Settings, in the folder of a program that may write there.
  own=$(ls "$installed" | grep -vxFf <(ls "$stage"; echo uninstall.exe)) || fail "The editor kept no settings."
  # Another version in its place takes the settings over.
  "$run" "$setup" /S "$word" || fail "Installing over it ended with $?"
  [[ $(ls "$installed" | grep -vxFf <(ls "$stage"; echo uninstall.exe)) == "$own" ]] || fail "Settings were lost."
  cmp -s "$stage/plumetta.exe" "$installed/plumetta.exe" || fail "Installing over it left no program."
  "$run" "$installed/uninstall.exe" /S "$word" || fail "The uninstaller ended with $?"
  WINEPREFIX=$PLUMETTA_WINEPREFIX "$server" -w
  # What the person has made stays; without it, all is as before.
  [[ $(ls "$installed") == "$own" ]] || fail "Of the program's folder $(ls "$installed") stays; the person's is $own"
  rm -rf "$installed"
  snapshot >"$scratch/after"
  diff "$scratch/before" "$scratch/after" || fail "Left behind after $word, or taken away."
}

# As the taskbar does it: asked to close, not killed.
close_window() { "$run" taskkill.exe /im plumetta.exe >/dev/null; }
use() {
  [[ $("$run" plumetta-cli.exe --version | tr -d '\r') == "plumetta-cli $version" ]] ||
    fail "The installed program does not tell version $version"
  cp "$scratch/chord.wav" "$scratch/work.wav"
  "$run" plumetta-cli.exe --quiet edit open "Z:$scratch/work.wav" select 0 250ms copy cursor 0 paste \
    save "Z:$scratch/edited.wav"
  [[ $(stat -c %s "$scratch/edited.wav") -gt $(stat -c %s "$scratch/work.wav") ]] || fail "Nothing was pasted."
  open_and_close edited.wav "$folder/windows.png" "$run" plumetta.exe "Z:$scratch/edited.wav"
}

version=$(basename "$setup" | sed -E 's/plumetta-(.*)-setup.exe/\1/')
"$here/../../tools/make_demo" "$scratch/chord.wav"
start_display
# A type of file that another program has taken, which stays with it.
"$run" reg.exe add 'HKCU\Software\Classes\.wav' /ve /d Other.Sound /f >/dev/null
# There on every Windows.
for hive in HKLM HKCU; do
  "$run" reg.exe add "$hive\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall" /f >/dev/null
  "$run" reg.exe add "$hive\\Software\\RegisteredApplications" /f >/dev/null
done
mkdir -p "$drive/users/$(id -un)/AppData/Local/Programs"
cycle /AllUsers "Program Files/Plumetta"
cycle /CurrentUser "users/$(id -un)/AppData/Local/Programs/Plumetta"
echo "Installed, used and uninstalled, for everybody and for one person"
