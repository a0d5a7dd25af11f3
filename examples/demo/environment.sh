#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What an application learns of its surroundings: a user's folders in the user's language, facts about
# the system and the machine, two displays of which one is pulled out, and settings in a property list
# that other readers agree about.
#
#   examples/demo/environment.sh ULA FOLDER      FOLDER becomes the user's home
#
# Two displays need the X server with its dummy driver; without them Xvfb has one.
set -euo pipefail
. "$(dirname "$0")/functions.sh"
ula=$1
folder=$(cd "$2" && pwd -P)
export HOME=$folder
unset XDG_CONFIG_HOME XDG_DATA_HOME LC_ALL LC_MESSAGES LC_MONETARY LANGUAGE

server=0
show() {
    printf '  $ ula %s\n' "$*"
    "$ula" "$@" | sed "s|^|    |; s|$folder|~|g"
}
# holds CONDITION TEXT: a condition in Python on `it`, the JSON that comes in.
holds() {
    python3 -c "import json, sys; it = json.load(sys.stdin); sys.exit(0 if $1 else 1)" ||
        wrong "$2"
}
stop_server() {
    [ "$server" -eq 0 ] || kill "$server" 2>/dev/null || true
    server=0
}
trap stop_server EXIT

# start_server COMMAND...: an X server that says its number when it is ready.
start_server() {
    mkfifo "$folder/ready"
    "$@" -noreset -nolisten tcp -displayfd 3 3>"$folder/ready" >"$folder/server.log" 2>&1 &
    server=$!
    local number=""
    read -r number <"$folder/ready" || true
    rm "$folder/ready"
    [ -n "$number" ] || return 1
    export DISPLAY=:$number
}

two_heads() {
    [ -e /usr/lib/xorg/modules/drivers/dummy_drv.so ] && command -v xrandr >/dev/null || return 1
    cat >"$folder/heads.conf" <<'CONF'
Section "ServerFlags"
    Option "AutoAddDevices" "false"
    Option "AutoAddGPU" "false"
EndSection
Section "Device"
    Identifier "card"
    Driver "dummy"
    VideoRam 256000
EndSection
Section "Monitor"
    Identifier "monitor"
    HorizSync 5.0-1000.0
    VertRefresh 5.0-200.0
EndSection
Section "Screen"
    Identifier "screen"
    Device "card"
    Monitor "monitor"
    DefaultDepth 24
    SubSection "Display"
        Depth 24
        Modes "1280x1024"
        Virtual 4096 4096
    EndSubSection
EndSection
CONF
    start_server Xorg -config "$folder/heads.conf" -logfile "$folder/heads.log" -novtswitch \
        -sharevts || return 1
    xrandr --addmode DUMMY1 1024x768
    xrandr --output DUMMY1 --mode 1024x768 --right-of DUMMY0
}

mkdir "$folder/.config"
printf 'XDG_DOCUMENTS_DIR="$HOME/Dokumente"\nXDG_PICTURES_DIR="$HOME/Bilder"\n' \
    >"$folder/.config/user-dirs.dirs"
show folders | grep -E 'ula|Dokumente|Bilder' || true
"$ula" folders --json | holds "it['folders']['pictures'] == '$folder/Bilder'" "the pictures are elsewhere"

printf '\n'
LANG=de_AT.UTF-8 show system
LANG=de_AT.UTF-8 "$ula" system --json |
    holds "it['system']['language'] == 'Deutsch' and it['system']['countryCode'] == 'AT'" "language or country is wrong"
"$ula" system --json | holds "it['system']['processor']['count'] == $(getconf _NPROCESSORS_ONLN)" \
    "the processors are miscounted"

printf '\n'
if two_heads; then
    show screens
    "$ula" screens --draw "$folder/two.png"
    printf '  $ ula screens --draw two.png     %s bytes\n' "$(stat -c %s "$folder/two.png")"
    "$ula" screens --json | holds "len(it['screens']) == 2 and it['screens'][1]['bounds']['left'] == 1280" \
        "the second display is not where it was put"
    printf '    the second one is pulled out:\n'
    xrandr --output DUMMY1 --off
    show screens | tail -n +2
    "$ula" screens --json | holds "len(it['screens']) == 1 and it['screens'][0]['primary']" "the second display stayed"
else
    stop_server
    start_server Xvfb -screen 0 1280x1024x24 || wrong "no X server: $(tail -n 1 "$folder/server.log")"
    show screens
    "$ula" screens --draw "$folder/one.png"
    printf '    two displays are left out: this machine has no X server with the dummy driver\n'
fi
stop_server
unset DISPLAY
{ "$ula" screens --json 2>/dev/null || true; } | holds "it['screens'] == []" "there are displays without a server"

printf '\n'
settings() { "$ula" settings --plist Example Photos "$@"; }
settings set Window Width 1280
settings set Window Title 'Größe & <Maß>'
settings set Import Folders "$folder/Bilder" /media/card
settings set Import Gamma 2.2
list=$folder/Library/Preferences/com.Example.Photos.plist
show settings --plist Example Photos
python3 - "$list" <<'PYTHON' || wrong "plistlib reads something else"
import plistlib, sys
with open(sys.argv[1], "rb") as file:
    it = plistlib.load(file)
assert it["Window"] == {"Width": 1280, "Title": "Größe & <Maß>"}, it
assert it["Import"]["Folders"][1] == "/media/card" and it["Import"]["Gamma"] == 2.2, it
PYTHON
printf "    Python's plistlib reads the same\n"
if command -v plistutil >/dev/null; then
    plistutil -i "$list" -o "$folder/binary.plist" -f bin
    cp "$folder/binary.plist" "$list"
    [ "$(settings get Window Title)" = 'Größe & <Maß>' ] || wrong "the binary list reads differently"
    printf '    and so does ula from the binary list that plistutil makes of it\n'
fi

[ $failed -eq 0 ] && printf '    all of it was true\n'
exit $failed
