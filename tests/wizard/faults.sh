#!/bin/sh
# Kills `zoka project new` at every system call that changes a file, and lets every such call fail once, as on a full
# disk. Afterwards nothing but the project folder and the two logs is new (after a kill perhaps a temporary file), the
# templates and a neighbour are as they were,
# and the same project can be made once its folder is gone. Then two programs make the same folder at once: one wins.
# usage: faults.sh PATH-OF-ZOKA TEMPLATE-FOLDER. Status 77 where nothing can be traced.
zoka=$1
suite=$2
. "${0%/*}/../support/faults.sh"

mkdir project suite suite/templates games # `project` is what a failure lists
cp -R "$suite"/wizards "$suite"/starts "$suite"/xml "$suite"/*.kez suite/templates/
echo kept >games/neighbour
cp -R suite/templates before

new() { "$zoka" "$@" project new empty --suite suite --folder games/g; }

check() { # what stray-allowed
    diff -r before suite/templates >/dev/null || fail "$1: the templates are other ones"
    [ "$(cat games/neighbour)" = kept ] || fail "$1: the neighbour is another one"
    for path in games/* suite/*; do
        case $path in
        games/neighbour | games/g | suite/templates | suite/wizardDebug.xml | suite/debugLogOut.xml) ;;
        'suite/~zk'*.tmp) [ "$2" = yes ] || fail "$1: left $path behind" ;;
        *) fail "$1: left $path behind" ;;
        esac
    done
}

refused() { [ -s output ] && [ ! -e games/g ]; }

# Injects the fault into each call of `$1` in turn.
inject() { # call fault
    count=1
    while :; do
        rm -rf games/g suite/wizardDebug.xml suite/debugLogOut.xml suite/~zk*.tmp
        strace -f -o trace -e trace="$1" -e inject="$1:$2:when=$count" "$zoka" --yes project new empty --suite suite \
            --folder games/g >output 2>&1 </dev/null
        status=$?
        grep -q 'INJECTED\|killed by SIGKILL' trace || break
        runs=$((runs + 1))
        what="$1 number $count, $2"
        stray=no
        [ $status -ne 137 ] || stray=yes
        check "$what" $stray
        case "$status $2" in
        137*) ;;
        0*) [ -s games/g/main.xml ] || fail "$what: said to be made, and is not" ;;
        3*) if grep -q "standard output\|Can't copy '" output; then [ -s games/g/main.xml ]; else refused; fi || fail "$what: half made" ;;
        [12]*) refused || fail "$what: half made, or without a word" ;;
        *) fail "$what: ended with $status" ;;
        esac
        rm -rf games/g
        new >output 2>&1 || fail "$what: not made at the second try"
        count=$((count + 1))
    done
    [ $status -eq 0 ] || fail "$1: failed without a fault"
}

new >output 2>&1 || fail "without a fault"
for call in mkdir write rename fsync unlink copy_file_range sendfile fchmod chmod fchmodat; do
    inject $call signal=KILL
    [ $call = unlink ] || inject $call error=ENOSPC
done
inject openat error=ENOSPC
[ $runs -gt 20 ] || fail "only $runs faults"

# Two at once. ROUNDS=1000 for long.
round=0
while [ $round -lt "${ROUNDS:-20}" ]; do
    round=$((round + 1))
    rm -rf games/g
    new >output2 2>&1 &
    other=$!
    new >output 2>&1
    first=$?
    wait $other
    second=$?
    case "$first $second" in
    '0 1') lost=output2 ;;
    '1 0') lost=output ;;
    *) fail "round $round of two: they ended with $first and $second" ;;
    esac
    grep -q 'Could not overwrite a file/folder' $lost || fail "round $round of two: the other has no message"
    [ -s games/g/main.xml ] || fail "round $round of two: no project"
done

# A template whose project takes more memory than the program has from its start.
main=suite/templates/starts/empty/main.xml
cp $main small.xml
awk '{ print } /<\/Level>/ {
    print "<Level name=\"many\">"
    for (i = 1; i <= 6000; i++) printf "<Entity name=\"crate_%d\"/>\n", i
    print "</Level>"
}' small.xml >$main
rm -rf before
mkdir before
undated() { sed 's/ date="[0-9]*"//' "$1"/g/main.xml 2>/dev/null; }
same() { [ "$(undated "$1")" = "$(undated "$2")" ] && diff -r --exclude=main.xml "$1" "$2" >/dev/null; }
more=yes # the report of the run
without_memory main.xml "$zoka" --yes project new empty --suite suite --folder project/g

echo "$runs runs with a fault, $spent without memory, nothing harmed; $round rounds of two at once, one made it"
