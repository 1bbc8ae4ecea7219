#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Usage: debian.sh PACKAGE.deb  Installs the package on a Debian of its own with nothing on it, edits a file and opens the
# window there, and removes it again: nothing of it may stay but the person's own settings. Needs root.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source "$here/window.sh"
package=$(realpath "$1")
folder=$(dirname "$package")
# The window's settings go into the person's own folder, as on any machine.
mkdir -p "$folder/clean"
clean=$(mktemp -d "$folder/clean/XXXXXX")
chmod 755 "$clean"
trap 'stop_display; rm -rf --one-file-system "$clean"' EXIT

# Runs a command on the clean Debian. Mounts of a call end with it.
inside_as() {  # USER HOME COMMAND...
  unshare --mount sh -ec 'mount -t proc proc "$0/proc"; mount -t tmpfs none "$0/dev/shm"; exec chroot "$@"' \
    "$clean" "--userspec=$1" "$clean" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME="$2" LANG=C.UTF-8 \
    DISPLAY="${DISPLAY:-}" NO_AT_BRIDGE=1 DEBIAN_FRONTEND=noninteractive "${@:3}"
}
inside() { inside_as root /root "$@"; }
# Programs are used by somebody who may not write into the system's folders.
as_person() { inside_as person /home/person "$@"; }

make_clean_debian() {
  local suite mirror
  read -r suite mirror < <(apt-get indextargets --format '$(CODENAME) $(REPO_URI)' 'Origin: Debian' \
    'Created-By: Packages' | sort | head -n 1)
  debootstrap --variant=minbase "$suite" "$clean" "$mirror" >"$folder/debootstrap.log" 2>&1 ||
    fail "No clean Debian could be made; see $folder/debootstrap.log"
  mkdir -p "$clean/dev/shm"
  inside apt-get -qq update
  inside useradd --create-home person
}

own_files() { find "$clean" -xdev -iname '*plumetta*' ! -path '*/proc/*' ! -path '*/var/log/*' -printf '/%P\n' | sort; }

close_window() {  # TITLE
  xdotool search --onlyvisible --name "$1" windowfocus --sync 2>/dev/null || true
  sleep 1
  xdotool key --clearmodifiers ctrl+q
}

make_clean_debian
cp "$package" "$clean/tmp/package.deb"
inside apt-get -qq install -y --no-install-recommends /tmp/package.deb >"$folder/install.log" 2>&1 ||
  fail "The package does not install; see $folder/install.log"
[[ $(as_person plumetta-cli --version) == "plumetta-cli $(dpkg-deb -f "$package" Version)" ]] ||
  fail "The installed program tells another version than its package."

"$here/../../tools/make_demo" "$clean/tmp/chord.wav"
as_person plumetta-cli --quiet edit open /tmp/chord.wav select 0 250ms copy cursor 0 paste save /tmp/edited.wav
[[ $(stat -c %s "$clean/tmp/edited.wav") -gt $(stat -c %s "$clean/tmp/chord.wav") ]] || fail "Nothing was pasted."

start_display
inside apt-get -qq install -y --no-install-recommends fonts-dejavu-core >>"$folder/install.log" 2>&1
open_and_close edited.wav "$folder/debian.png" as_person plumetta /tmp/edited.wav
desktop-file-validate "$clean/usr/share/applications/plumetta.desktop"

mapfile -t settings < <(own_files | grep '^/home/')
[[ ${#settings[@]} -gt 0 ]] || fail "The editor kept no settings in the person's own folder."
inside apt-get -qq purge -y --autoremove plumetta >>"$folder/install.log" 2>&1
left=$(own_files | grep -v '^/home/' || true)
[[ -z $left ]] || fail "Left behind: $left"
mapfile -t kept < <(own_files)
[[ ${kept[*]} == "${settings[*]}" ]] || fail "The person's settings went with the package."
echo "Installed, used and removed; the person's settings stay: ${kept[*]}"
