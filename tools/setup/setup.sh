#!/bin/bash
# Makes a Debian machine ready: tools/setup/setup.sh GROUP...   (groups: build wine bench fuzz)
#
# Looks each time at what is really there (a fraction of a second) and installs only what
# is missing, as root or through sudo; where nothing is missing it says nothing.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
log=$root/build/setup.log
mkdir -p "$root/build"

say() { echo "set-up: $*"; }
die() {
    echo "set-up: $*" >&2
    exit 1
}

. "$here/packages.sh"
. "$here/apt.sh"
. "$here/boost.sh"

for group in "$@"; do
    case $group in
    build)
        # shellcheck disable=SC2086 # lists of words
        install_missing "the compilers and libraries" $packages_build
        fetch_boost_sources
        ;;
    wine)
        # shellcheck disable=SC2086
        if ! install_missing "32-bit Wine" $packages_wine; then
            die "32-bit Wine can't be installed here (see $log), so the Windows half can't run." \
                "ZOKA_NO_WINE=1 runs the native half alone: make test ZOKA_NO_WINE=1"
        fi
        ;;
    bench)
        # shellcheck disable=SC2086
        install_missing "the benchmark's libraries" $packages_bench
        ;;
    fuzz)
        # shellcheck disable=SC2086
        install_missing "the fuzzer's compiler" $packages_fuzz
        ;;
    *) die "no group '$group'" ;;
    esac
done
