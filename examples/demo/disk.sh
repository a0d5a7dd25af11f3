#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A tree of pictures on a disk image, mounted where nobody else sees it, listed by the tool.
#
#   unshare --mount examples/demo/disk.sh ULA FOLDER      as root
set -euo pipefail
. "$(dirname "$0")/functions.sh"
ula=$1
folder=$2
disk="/Volumes/Holiday disk"

# expect WHAT PATTERN TEXT
expect() {
    grep -Eq -- "$2" <<<"$3" || wrong "$1"
}
show() {
    printf '  $ ula %s\n' "$*"
    "$ula" "$@" | sed 's/^/    /'
}

mkdir -p /Volumes
mount -t tmpfs volumes /Volumes
ln -s / /Volumes/Linux
mkdir "$disk"
truncate -s 8M "$folder/disk.img"
mkfs.ext4 -q -L "Holiday disk" "$folder/disk.img"
if ! mount -o loop "$folder/disk.img" "$disk" 2>/dev/null; then
    printf '    left out: this machine mounts no disk images\n'
    exit 0
fi

mkdir -p "$disk/Item 10" "$disk/item 9/RAW" "$disk/Viewer.app" "$disk/private"
printf 'private\nlost+found\n' >"$disk/.hidden"
ln -s "item 9" "$disk/newest"
printf "[Desktop Entry]\nType=Link\nName=Pictures\nURL=file://%s\n" "${disk// /%20}/Item%2010" \
    >"$disk/Pictures.desktop"
printf 'not a picture' >"$disk/IMG_1.jpg"

show drives
drives=$("$ula" drives --json)
expect "the start-up disk is listed as Linux" '"path": "/Volumes/Linux"' "$drives"
expect "the image is a virtual drive" '"kind": "virtual"' "$drives"

show dir --sort "$disk"
listed=$("$ula" dir --sort "$disk")
folders=$(sed -n 's/^folder *//p' <<<"$listed" | paste -sd '|')
expect "two folders are shown, item 9 before Item 10" '^item 9\|Item 10$' "$folders"
expect "the link leads to its folder" 'newest -> /Volumes/Holiday disk/item 9' "$listed"
expect "the alias leads to its folder" 'Pictures.desktop -> /Volumes/Holiday disk/Item 10' "$listed"

umount "$disk"
[ $failed -eq 0 ] && printf '    every item is what it should be\n'
exit $failed
