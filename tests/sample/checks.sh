#!/bin/bash
# shellcheck disable=SC2034,SC2154 # what the two that share it set for each other
# What the tests with a real platform have in common. Sourced; they set `test`, `workspace`, and `out`
# and `err`, the files of the platform's own output.
readonly skipped=77

# need WHAT NAME [GROUP]: skips the test when WHAT is empty.
need() {
    [[ -n $1 ]] && return
    echo "skipped: there is no $2 (scripts/install-dependencies ${3:-sample} installs it)"
    exit "$skipped"
}

# Ends only what this test has started, also what it has stopped or what hangs.
running=()
end_running() {
    local id
    for id in "${running[@]}"; do
        kill "$id" 2>/dev/null || true
        kill -CONT "$id" 2>/dev/null || true
        timeout 100 tail --pid="$id" -s 0.02 -f /dev/null || kill -KILL "$id" 2>/dev/null || true
        wait "$id" 2>/dev/null || true
    done
    running=()
}
trap end_running EXIT

fail() {
    local file
    echo "$test: $*" >&2
    for file in "$out" "$err" "$workspace/logs/rcplauncher.log"; do
        [[ -s $file ]] || continue
        echo "--- $file:" >&2
        tail -n 100 -- "$file" >&2
    done
    exit 1
}

equal() {
    [[ $2 == "$3" ]] || fail "$1 is \"$2\" and should be \"$3\""
}

# What the report says behind a name, and that it says so.
reported() {
    sed -n "s|^    ${1//./\\.} \{1,\}||p" "$out" | head -n 1
}
reports() {
    equal "$1" "$(reported "$1")" "$2"
}

# Whether the JVM or the platform got the argument: it stands in one of the report's numbered lists.
got() {
    sed -n 's/^ \{1,\}[0-9]\{1,\} //p' "$out" | grep -xF -- "$1" >/dev/null
}
gets() {
    got "$1" || fail "\"$1\" did not arrive"
}
misses() {
    ! got "$1" || fail "\"$1\" arrived"
}

# The id in the file of the main process, which is padded with blanks.
recorded_process() {
    local id
    read -r id <"$workspace/.rcp.main"
    echo "$id"
}

program_of() {
    readlink -f -- "/proc/$1/exe"
}
