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

wanted=
for group in "$@"; do
    packages=packages_$group
    [ -n "${!packages:-}" ] || die "no group '$group'"
    wanted+=" ${!packages}"
done
# shellcheck disable=SC2086 # lists of words
install_missing $wanted
case " $* " in
*' build '*) fetch_boost_sources ;;
esac
