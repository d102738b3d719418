#!/bin/bash
# shellcheck disable=SC2034,SC2154 # what the two that share it set for each other
# A screen of its own and what appears on it, for ./run --desktop and the tests. Sourced.

readonly window_title="Velmo Sample"

# tied COMMAND...: ends with the shell that starts it, however that ends, and not before: what a terminal sends
# to all it shows does not reach it.
tied() {
    exec setsid setpriv --pdeathsig KILL "$@"
}

# open_screen X_CLIENT: DISPLAY becomes a new virtual screen, on which X_CLIENT tells what appears.
open_screen() {
    local number
    screen_log=''
    exec {screen_answer}< <(tied Xvfb -displayfd 1 -screen 0 1280x900x24 -nolisten tcp 2>/dev/null)
    screen_processes=("$!")
    read -r -t 300 -u "$screen_answer" number || return 1
    export DISPLAY=:$number
    exec {screen_events}< <(tied "$1" watch)
    screen_processes+=("$!")
    read -r -t 300 -u "$screen_events" _ # "ready": from here on nothing is missed.
}

close_screen() {
    [[ -z ${screen_processes-} ]] || kill "${screen_processes[@]}" 2>/dev/null || true
    screen_processes=()
}

# next_event: the next line of x_client, in `event`. Status 1: nothing has happened in half a second; 2: the
# screen is gone. `screen_log` collects the lines.
next_event() {
    local status=0 part
    IFS= read -r -t 0.5 -u "$screen_events" part || status=$?
    # The time can be over in the middle of a line, and what was read of it is taken from the pipe.
    event_begun=${event_begun-}$part
    ((status <= 128)) || return 1
    ((status == 0)) || return 2
    event=$event_begun event_begun=''
    screen_log+=$event$'\n'
}

# await_window TITLE SECONDS [PROCESS]: reads on until a window is mapped whose title begins so; then
# `window` is its id. Status 1 when the time is over or the process has ended.
await_window() {
    local what size name status
    local -r end=$((SECONDS + $2))
    while ((SECONDS < end)); do
        status=0
        next_event || status=$?
        case $status in
        0)
            read -r what _ window size name <<<"$event"
            [[ $what != map || $name != "$1"* ]] || return 0
            ;;
        1) [[ -z ${3-} ]] || kill -0 "$3" 2>/dev/null || return 1 ;;
        *) return 1 ;;
        esac
    done
    return 1
}

# Whether another window than $1 is on the screen: the splash goes when the client has drawn its own.
has_other_window() {
    awk -v own="$1" '$1 == "map" && $3 != own { on[$3] } $1 == "unmap" { delete on[$3] }
        END { for (window in on) exit 0; exit 1 }' <<<"$screen_log"
}

# take_picture WINDOW FILE SECONDS: as soon as the window has been drawn, with text in it, and stays as it is.
# Status 1, and no file, when it does not in that time, or the picture cannot be had or written.
take_picture() {
    local -r end=$((SECONDS + $3))
    local status=1
    rm -f -- "$2"
    while ((SECONDS < end)) && has_other_window "$1"; do
        next_event || (($? == 1)) || return 1
    done
    while ((SECONDS < end)); do
        xwd -silent -id "$1" | xwdtopnm 2>/dev/null >"$2.new" || break
        if cmp -s -- "$2.new" "$2.before" && (($(ppmhist -noheader "$2.new" | wc -l) > 16)); then
            pnmtopng 2>/dev/null <"$2.new" >"$2.before" && mv -- "$2.before" "$2" && status=0
            break
        fi
        mv -f -- "$2.new" "$2.before"
        sleep 0.5
    done
    rm -f -- "$2.new" "$2.before"
    return "$status"
}
