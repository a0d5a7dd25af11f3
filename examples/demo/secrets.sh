#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Passwords and notes of a user of its own: in an encrypted file where no session bus is, or in a
# real Secret Service on a session bus of its own.
#
#   examples/demo/secrets.sh ULA FOLDER file|service      FOLDER is empty and stays to be looked at
set -euo pipefail
. "$(dirname "$0")/functions.sh"
ula=$(realpath "$1")
folder=$(cd "$2" && pwd -P)
place=$3
password='correct horse battery staple'
keychain=$folder/data/ula/keychain

# secret ARGUMENT...: the tool with its command shown; standard input is the secret, if any.
secret() {
    printf '  $ ula secret %s\n' "$*"
    "$ula" secret "$@" 2>&1 | sed "s|$folder|~|g; s/^/    /"
    return "${PIPESTATUS[0]}"
}
# expect CODE ARGUMENT...: the same, with the exit code that it has to have.
expect() {
    local code=0 wanted=$1
    shift
    secret "$@" || code=$?
    [ $code -eq "$wanted" ] || wrong "the exit code is $code and not $wanted"
}
password_is() {
    [ "$("$ula" secret get Mail --account ann --qualifier org.example.mail 2>/dev/null)" = "$1" ] ||
        wrong "the password is another one"
}

store_and_find() {
    expect 0 add Mail --account ann --qualifier org.example.mail <<<"$password"
    expect 0 add "Safe code" <<<4711
    expect 0 get "Safe code"
    password_is "$password"
    expect 0 list
    expect 0 where
}

# Four processes at once, each of which adds ten notes.
add_at_once() {
    local process item adders=()
    for process in 1 2 3 4; do
        (for item in {1..10}; do
            printf x | "$ula" secret add "Note $process-$item" --qualifier many
        done) 2>/dev/null &
        adders+=($!)
    done
    for process in "${adders[@]}"; do
        wait "$process" || wrong "a process could not add"
    done
    local count
    count=$("$ula" secret list --qualifier many | wc -l)
    [ "$count" -eq 40 ] || wrong "$count of 40 notes are there"
    printf '    four processes at once have added %d notes\n' "$count"
}

in_file() {
    unset DBUS_SESSION_BUS_ADDRESS XDG_RUNTIME_DIR
    store_and_find
    if grep -rqF -e "$password" -e Mail "$folder"; then
        wrong "a secret or a name can be read on the disk"
    else
        printf '    neither secrets nor names can be read in the %d files\n' \
            "$(find "$folder" -type f | wc -l)"
    fi
    add_at_once
    chmod 644 "$keychain/key"
    expect 3 get "Safe code"
    chmod 600 "$keychain/key"
    truncate --size=-1 "$keychain/items"
    expect 3 get "Safe code"
    [ -e "$keychain/items.damaged-1" ] || wrong "the damaged file is not kept"
    expect 1 get "Safe code"
}

start_keyring() {
    printf pw | gnome-keyring-daemon --unlock --components=secrets --daemonize "$@" \
        >/dev/null 2>&1
}

in_service() {
    start_keyring
    store_and_find
    [ ! -e "$keychain/items" ] || wrong "something was written to the encrypted file"
    add_at_once
    printf '    the keyring is locked, and nobody can be asked to unlock it\n'
    gdbus call --session --dest org.freedesktop.secrets --object-path /org/freedesktop/secrets \
        --method org.freedesktop.Secret.Service.Lock \
        "['/org/freedesktop/secrets/aliases/default']" >/dev/null
    expect 3 get "Safe code"
    start_keyring --replace
    expect 0 move file
    DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent password_is "$password"
}

export HOME=$folder XDG_DATA_HOME=$folder/data
unset DISPLAY
case $place in
    file) in_file ;;
    service)
        export XDG_RUNTIME_DIR=$folder/run
        mkdir -m 700 "$XDG_RUNTIME_DIR"
        # What the bus has to say is of no interest here.
        exec dbus-run-session -- bash "$0" "$ula" "$folder" session 2>/dev/null
        ;;
    session) in_service ;;
    *)
        echo "secrets.sh: '$place' is neither file nor service" >&2
        exit 2
        ;;
esac
exit $failed
