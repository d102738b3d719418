#!/bin/bash
# A new Debian in a folder of its own, for the tests that need one; they read this file.

skip() {
    echo "skipped: $*"
    exit 77
}

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

# alone ARGUMENTS...: goes on with them in namespaces of mounts and processes, where what this makes and starts ends
# with it.
alone() {
    ((EUID == 0)) || skip "another root can be entered by root alone"
    command -v mmdebstrap >/dev/null || skip "there is no mmdebstrap"
    if [[ -z ${NEW_DEBIAN_ALONE-} ]]; then
        export NEW_DEBIAN_ALONE=1
        unshare --mount --pid --fork true 2>/dev/null || skip "no namespace of mounts and processes can be had"
        exec unshare --mount --pid --fork --kill-child "$0" "$@"
    fi
}

# keep_debian FOLDER NAME RELEASE WHAT...: a Debian with what mmdebstrap is asked for lies in the archive `kept` in
# FOLDER, called NAME and a sum of the question; the archives of other questions under that NAME go.
keep_debian() {
    local question=(--mode=root --variant=minbase --format=tar "${@:4}" "$3" -) sum file
    sum=$(printf '%s\n' "${question[@]}" | sha256sum | cut -c 1-16)
    kept=$1/$2-$sum.tar
    [[ -e $kept ]] || fetch_debian "$kept" "${question[@]}"
    for file in "$1/$2"-*.tar{,.log}; do
        if [[ -e $file && ${file#"$1/$2-"} =~ ^[0-9a-f]{16}\.tar(\.log)?$ && $file != "$kept"* ]]; then
            rm -f -- "$file"
        fi
    done
}

# fetch_debian ARCHIVE QUESTION...: makes it. Only without a network, or where that is too slow, is the test skipped:
# a Debian that cannot be made is a failure.
fetch_debian() {
    local archive=$1 new status=0
    new=$(mktemp "$archive.XXXXXX")
    # shellcheck disable=SC2064  # this name, and not a later one's
    trap "rm -f -- '$new'" EXIT
    timeout 1500 mmdebstrap "${@:2}" >"$new" 2>"$archive.log" || status=$?
    if ((status != 0)); then
        grep '^E:' "$archive.log" >&2 || true
        ((status != 124)) || skip "Debian's packages were not fetched in 25 minutes"
        ! grep -qE 'Could not resolve|Could not connect|Unable to connect|Temporary failure|Failed to fetch' \
            "$archive.log" || skip "Debian's packages cannot be fetched"
        fail "mmdebstrap ${*:2} makes no Debian"
    fi
    mv -- "$new" "$archive"
}

# enter_debian ARCHIVE FOLDER: lays it out in a fresh folder below FOLDER, which is `root` until the test ends.
enter_debian() {
    root=$(mktemp -d "$2/root-XXXXXX")
    trap 'umount "$root/proc" 2>/dev/null || true; rm -rf --one-file-system -- "$root"' EXIT
    tar --extract --file="$1" --directory="$root" --numeric-owner
    mount -t proc proc "$root/proc"
}

inside() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 "$@"
}
