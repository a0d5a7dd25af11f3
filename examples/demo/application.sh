#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# An application that is started twice: the later instance hands its pictures to the first, whose
# icon shows the progress. Then the first one crashes, the next takes its place and is opened anew.
#
#   xvfb-run -a examples/demo/application.sh ULA PROGRAM FOLDER
#
# PROGRAM is demo-application. The icons are left in the folder as pictures.
set -euo pipefail
. "$(dirname "$0")/functions.sh"
ula=$1
program=$2
folder=$(cd "$3" && pwd -P)
bundle="$folder/Photo Box.app"
photo="$bundle/Contents/MacOS/Photo Box"
identifier=com.maker.photobox
told=$folder/told.txt
# Daemons that GNUstep starts are then the scene's alone.
export TMP=$folder/tmp
mkdir -p "$TMP"

# until_alone: waits until no instance runs.
until_alone() {
    local end=$((SECONDS + 30))
    while "$ula" running "$identifier" >/dev/null; do
        if [ $SECONDS -ge $end ]; then
            wrong "an instance runs that should have ended"
            return
        fi
        sleep 0.05
    done
}
end_all() {
    "$ula" running --json "$identifier" | sed -n 's/.*"process": \([0-9]*\),.*/\1/p' |
        xargs -r kill -KILL 2>/dev/null || true
}
trap end_all EXIT

mkdir -p "$bundle/Contents/MacOS"
cp "$program" "$photo"
cat >"$bundle/Contents/Info.plist" <<END
<?xml version="1.0"?><plist version="1.0"><dict>
<key>CFBundleExecutable</key><string>Photo Box</string>
<key>CFBundleName</key><string>Photo Box</string>
<key>CFBundleIdentifier</key><string>$identifier</string>
</dict></plist>
END

printf '  $ Photo\\ Box &\n'
"$photo" >"$told" 2>"$folder/errors.txt" &
first=$!
until_told "^first $first$" 1
printf '    it is the first\n'

printf '  $ ula running %s\n' "$identifier"
"$ula" running "$identifier" | sed "s|$folder/||; s/^/    /"

printf '  $ Photo\\ Box IMG_1.jpg IMG_2.jpg IMG_3.jpg IMG_4.jpg\n'
"$photo" IMG_{1,2,3,4}.jpg >"$folder/second.txt" 2>>"$folder/errors.txt" ||
    wrong "the second instance ended with $?"
sed 's/^/    /' "$folder/second.txt"
until_told '^has its plain icon again$' 1
sed -n '/^first/d; s/^/    the first: /p' "$told"
for number in 1 2 3 4; do
    [ -s "$folder/icon-$number.png" ] || wrong "there is no picture of icon $number"
done
whole=$(sed -n 's/^icon-4.png: a bar of \([0-9]*\) of .*/\1/p' "$told")
grep -qx "icon-4.png: a bar of $whole of $whole points" "$told" || wrong "the last bar is not whole"

printf '  $ kill -KILL %s\n' "$first"
kill -KILL $first
wait $first 2>/dev/null || true
! "$ula" running "$identifier" >/dev/null || wrong "the crashed instance is still listed"

printf '  $ Photo\\ Box --restart\n'
"$photo" --restart >>"$told" 2>>"$folder/errors.txt" || wrong "there was no restart: $?"
until_told '^first ' 3
mapfile -t firsts < <(sed -n 's/^first //p' "$told")
printf '    after the crash %s is the first, and is opened anew as %s\n' "${firsts[1]}" "${firsts[2]}"
[ "${firsts[1]}" != "${firsts[2]}" ] || wrong "it is the same process"

printf '  $ Photo\\ Box --quit\n'
"$photo" --quit >/dev/null 2>>"$folder/errors.txt" || wrong "nobody took the wish"
until_told '^ends$' 1
until_alone
[ $failed -eq 0 ] && printf '    there was one at any time\n'
exit $failed
