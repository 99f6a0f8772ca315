# What the scripts have in common that break each system call of the tool in turn: a folder of their own to work in,
# the count of runs, and the end with a message. To be sourced first; leaves with status 77 where nothing can be traced.
set -u
export ASAN_OPTIONS=detect_leaks=0 # the leak check can't work in a process that is traced
strace -o /dev/null true 2>/dev/null || {
    echo "strace can't trace here"
    exit 77
}
work=$(mktemp -d) && cd "$work" || exit 1
trap 'rm -rf "$work"' EXIT
# shellcheck disable=SC2034 # counted by each script
runs=0

fail() {
    echo "FAILED: $*"
    ls project
    cat output
    exit 1
}
