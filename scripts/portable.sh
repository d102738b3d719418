#!/bin/bash
# What Linux and macOS do by different means, under one name. Sourced by what a Mac runs too, so everything
# here is bash 3.2 and tools of both systems.

# The path of what is there, without links.
real_path() {
    local path=$1 target
    while [[ -L $path ]]; do
        target=$(readlink "$path")
        [[ $target == /* ]] || target=$(dirname "$path")/$target
        path=$target
    done
    if [[ -d $path ]]; then
        (cd -P "$path" && pwd)
    else
        printf '%s/%s\n' "$(cd -P "$(dirname "$path")" && pwd)" "$(basename "$path")"
    fi
}

processors() {
    getconf _NPROCESSORS_ONLN
}

# lock_descriptor NUMBER: waits for the lock of the file that is open there; it lasts until all close it.
# Fails after twenty minutes: whoever has it hangs.
lock_descriptor() {
    # portable: asked for
    if command -v flock >/dev/null; then
        flock -w 1200 "$1" # portable: it is there
    else
        # portable: the system call
        perl -e 'alarm 1200; open(LOCK, ">&=", $ARGV[0]) && flock(LOCK, 2) or die "flock: $!\n"' "$1"
    fi
}

# newest_of: the file changed last, of those that stand in the lines of standard input.
newest_of() {
    local file newest=''
    while IFS= read -r file; do
        [[ -n $newest && ! $file -nt $newest ]] || newest=$file
    done
    [[ -n $newest ]] && printf '%s\n' "$newest"
}

