#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A tree and the drives of this machine while they are watched: an editor's save, a burst of 10,000
# files, a disk that is mounted and unmounted. Every one of them has to be told.
#
#   [unshare --mount] examples/demo/watch.sh ULA FOLDER      as root, where mounts are to be shown
set -euo pipefail
. "$(dirname "$0")/functions.sh"
ula=$1
folder=$(cd "$2" && pwd -P)
tree=$folder/pictures
told=$folder/told.txt

mkdir "$tree"
printf 'first' >"$tree/notes.txt"
if [ "$(id -u)" -eq 0 ]; then
    mkdir -p /Volumes
    mount -t tmpfs volumes /Volumes
    ln -s / /Volumes/Linux
fi
"$ula" watch -r --drives "$tree" >"$told" &
watcher=$!
trap 'kill $watcher 2>/dev/null || true' EXIT
printf '  $ ula watch -r --drives pictures\n'

# Only what happens after the start is told: something happens until it is.
while kill -0 $watcher && ! [ -s "$told" ]; do
    touch "$tree/notes.txt"
    sleep 0.1
done

mkdir -p "$tree/2026/November/21"
printf 'raw' >"$tree/2026/November/21/IMG_1.raw"
until_told "created .*/IMG_1.raw$" 1
mv "$tree/2026/November" "$tree/2026/11"
until_told "moved .*/November -> .*/2026/11/$" 1
printf 'second' >"$tree/notes.txt.new"
mv "$tree/notes.txt.new" "$tree/notes.txt"
until_told "moved .*/notes.txt.new -> .*/notes.txt$" 1
sed -n 's/^\(created\|moved\) .*/    &/p' "$told" | sed "s|$folder/||g" | head -n 6

seq -f "$tree/2026/11/21/IMG_%05g.jpg" 10000 | xargs touch
until_told "created .*/IMG_[0-9]{5}.jpg$" 10000
printf '    … and %d new pictures of a burst of 10000\n' \
    "$(grep -Ec '^created .*/IMG_[0-9]{5}.jpg$' "$told")"
if grep -q '^rescan' "$told"; then
    wrong "changes were lost"
fi

if [ "$(id -u)" -eq 0 ]; then
    mkdir /Volumes/Card
    truncate -s 8M "$folder/card.img"
    mkfs.ext4 -q -L Card "$folder/card.img"
    if mount -o loop "$folder/card.img" /Volumes/Card 2>/dev/null; then
        until_told '^mounted .*"Card"' 1
        umount /Volumes/Card
        until_told '^unmounted .*"Card"' 1
        sed -n 's/^\(un\)\?mounted.*/    &/p' "$told"
    else
        printf '    the disk is left out: this machine mounts no disk images\n'
    fi
fi

kill -INT $watcher
wait $watcher || wrong "the tool ended with $?"
trap - EXIT
[ $failed -eq 0 ] && printf '    all of it was told\n'
exit $failed
