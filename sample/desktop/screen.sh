#!/bin/bash
# shellcheck disable=SC2034,SC2154 # what the two that share it set for each other
# A screen of its own and what appears on it, for ./run --desktop and the tests. Sourced.

readonly window_title="Velmo Sample"

# open_screen X_CLIENT: DISPLAY becomes a new virtual screen, on which X_CLIENT tells what appears.
open_screen() {
    local number
    exec {screen_answer}< <(exec Xvfb -displayfd 1 -screen 0 1280x900x24 -nolisten tcp 2>/dev/null)
    screen_processes=("$!")
    read -r -t 300 -u "$screen_answer" number || return 1
    export DISPLAY=:$number
    exec {screen_events}< <(exec "$1" watch)
    screen_processes+=("$!")
    read -r -t 300 -u "$screen_events" _ # "ready": from here on nothing is missed.
}

close_screen() {
    [[ -z ${screen_processes-} ]] || kill "${screen_processes[@]}" 2>/dev/null || true
    screen_processes=()
}

# await_window TITLE SECONDS [PROCESS]: reads on until a window is mapped whose title begins so; then
# `window` is its id. Status 1 when the time is over or the process has ended. `screen_log` collects the
# lines that were read.
screen_log=''
await_window() {
    local line what size name status
    local -r end=$((SECONDS + $2))
    while ((SECONDS < end)); do
        status=0
        read -r -t 0.5 -u "$screen_events" line || status=$?
        if ((status > 128)); then # Nothing has happened in that time.
            [[ -z ${3-} ]] || kill -0 "$3" 2>/dev/null || return 1
        elif ((status != 0)); then
            return 1
        else
            screen_log+=$line$'\n'
            read -r what _ window size name <<<"$line"
            [[ $what != map || $name != "$1"* ]] || return 0
        fi
    done
    return 1
}

# take_picture WINDOW FILE
take_picture() {
    xwd -silent -id "$1" | xwdtopnm 2>/dev/null | pnmtopng 2>/dev/null >"$2.new" && mv -f -- "$2.new" "$2"
}
