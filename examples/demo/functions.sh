# SPDX-License-Identifier: MIT
# What the scenes of the demo share. To be sourced; `told` is the file that until_told reads.
failed=0
wrong() {
    printf '    FAIL %s\n' "$*"
    failed=1
}
# until_told PATTERN COUNT: waits until so many lines of what is told match; a minute at most.
until_told() {
    local end=$((SECONDS + 60))
    until [ "$(grep -Ec -- "$1" "$told")" -ge "$2" ]; do
        if [ $SECONDS -ge $end ]; then
            wrong "\"$1\" was not told $2 times"
            return
        fi
        sleep 0.05
    done
}
