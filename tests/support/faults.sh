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

# Lets a command meet the end of the memory at each of its requests for more, once it has opened the file: it must say so
# and end with 3, and the project folder be that of before/ or after/ (made here), with nothing left behind. A command
# that does more when its work is done (more=yes) may go without that: then it ends with 0, and the folder is that of
# after/.
spent=0 more=
same() { diff -r "$1" "$2" >/dev/null; }
without_memory() { # file, command...
    file=$1
    shift
    rm -rf after project
    cp -R before project
    "$@" >output 2>&1 || fail "$* with all memory"
    cp -R project after
    same before after && fail "$* changed nothing"
    number=0 first=$spent
    while :; do
        number=$((number + 1))
        rm -rf project
        cp -R before project
        # All that is asked for comes by mmap then.
        strace -f -o trace -e trace=brk,mremap,mmap,openat -e inject=brk:error=ENOMEM:when=2+ -e inject=mremap:error=ENOMEM \
            -e inject="mmap:error=ENOMEM:when=$number+" "$@" >output 2>&1
        status=$?
        grep -q 'mmap.*INJECTED' trace || break
        grep -q "openat.*[/\"]$file\"" trace || continue # still the start of the program, which the system does
        spent=$((spent + 1))
        [ $status -eq 0 ] && [ "$more" = yes ] && same project after && continue
        [ $status -eq 3 ] && grep -q 'There is not enough memory' output || fail "$*: memory ran out at $number, ended with $status"
        same project before || same project after ||
            fail "$*: memory ran out at $number, and the files are neither the old nor the new ones"
    done
    [ $status -eq 0 ] && same project after || fail "$*: not the same with all memory by mmap"
    [ $((spent - first)) -gt 2 ] || fail "$*: only $((spent - first)) times without memory"
}
