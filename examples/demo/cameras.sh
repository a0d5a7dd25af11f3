#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A memory card of a hundred pictures is put in, its import is killed in the middle and taken up
# again: every picture has to be there, whole and once.
#
#   unshare --mount examples/demo/cameras.sh ULA FOLDER      as root: the card is a disk image
set -euo pipefail
. "$(dirname "$0")/functions.sh"
ula=$1
folder=$(cd "$2" && pwd -P)
pictures=$folder/Pictures
card=$folder/Card

mkdir -p "$card"
truncate -s 96M "$folder/camera-card.img"
mkfs.ext4 -q -L Card "$folder/camera-card.img"
if ! mount -o loop "$folder/camera-card.img" "$card" 2>/dev/null; then
    printf '    left out: this machine mounts no disk images\n'
    exit 0
fi
trap 'umount "$card" 2>/dev/null || true' EXIT
mkdir -p "$card/DCIM/100ULA" "$card/DCIM/101ULA"
for number in $(seq -w 50); do
    for part in 100 101; do
        head -c 600000 /dev/urandom >"$card/DCIM/${part}ULA/IMG_$number.JPG"
    done
done

printf '  $ ula cameras\n'
"$ula" cameras | sed 's/^/    /'
printf '  $ ula cameras import Pictures --dates %%Y\n'
"$ula" cameras import "$pictures" --device Card --dates %Y >/dev/null &
import=$!
# Half of it, if the machine is not faster than that.
end=$((SECONDS + 60))
while kill -0 $import 2>/dev/null && [ $SECONDS -lt $end ] &&
    [ "$(find "$pictures" -type f 2>/dev/null | wc -l)" -lt 50 ]; do
    sleep 0.01
done
kill -KILL $import 2>/dev/null || true
wait $import 2>/dev/null || true
printf '    killed: %d pictures are there\n' "$(find "$pictures" -type f | wc -l)"
"$ula" cameras import "$pictures" --device Card --dates %Y | sed 's/^/    /'

arrived=$(find "$pictures" -type f -exec sha256sum {} + | cut -d' ' -f1 | sort)
sent=$(find "$card" -type f -name '*.JPG' -exec sha256sum {} + | cut -d' ' -f1 | sort)
[ "$arrived" = "$sent" ] || wrong "the pictures that arrived are not those of the card"
umount "$card" || wrong "the card cannot be taken out"
trap - EXIT
[ $failed -eq 0 ] && printf '    100 pictures of two folders with the same names: each is there, whole and once\n'
exit $failed
