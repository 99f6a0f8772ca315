#!/bin/sh
# Kills `zoka project set` at every system call that changes a file, and lets every such call fail once: as on a full
# disk, on one that is read-only, in a folder that went away, with a file that another program holds. Afterwards the
# project file is the old one or the new one, to the byte but for the date; where it is another one the old one stands
# beside it; no other file has changed; a refusal has a message; and the same change can be made.
# usage: faults.sh PATH-OF-ZOKA SAMPLE-PROJECT. Status 77 where nothing can be traced.
zoka=$1
sample=$2
. "${0%/*}/../support/faults.sh"

cp -R "$sample" project # its save loses a reference (the data folder is not here), so that a copy is kept
sed -i 's|<Paths proj_file="[^"]*"|<Paths proj_file="project\\"|' project/main.xml
cp -R project before
set_skill() { "$@" "$zoka" --yes project set project/main.xml level/harbour/entity/guard/skill/1=37 >output 2>&1 </dev/null; }
undated() { sed 's/ date="[0-9]*"//' "$1"; }
again() {
    rm -rf project
    cp -R before project
}

set_skill || fail "without a fault"
undated project/main.xml >new
cmp -s project/main.xml.1.bak before/main.xml || fail "no copy of the old file"

check() { # what killed
    undated project/main.xml >now
    if cmp -s project/main.xml before/main.xml; then
        state=old
    elif cmp -s now new; then
        state=new
    else
        # A behaviors file that could not be read at that moment is a reference lost: that line alone, named in the
        # output, and the copy has it.
        lost=$(diff new now | grep '^[<>]')
        case $lost in
        *'
'*) fail "$1: the project file is neither the old nor the new one" ;;
        '< '*'<Behavior '*) ;;
        *) fail "$1: the project file is neither the old nor the new one" ;;
        esac
        name=$(expr "$lost" : '.*"\(.*\)"')
        grep -q "$name" output || fail "$1: $name is lost without a word"
        cmp -s project/main.xml.1.bak before/main.xml || fail "$1: no copy of the old file"
        losses=$((losses + 1))
        state=new
    fi
    for path in project/*; do
        name=${path#project/}
        case $name in
        main.xml) ;;
        main.xml.1.bak) cmp -s "$path" before/main.xml || fail "$1: the copy is not the old file" ;;
        '~zk'*) [ "$2" = yes ] || fail "$1: left $path behind" ;;
        *) cmp -s "$path" "before/$name" || fail "$1: $path is another one" ;;
        esac
    done
}

# Injects the fault into each call of `$1` in turn.
inject() { # call fault
    count=1
    while :; do
        again
        set_skill strace -f -o trace -e trace="$1" -e inject="$1:$2:when=$count"
        status=$?
        grep -q 'INJECTED\|killed by SIGKILL' trace || break
        runs=$((runs + 1))
        what="$1 number $count, $2"
        case "$status $2" in
        137*)
            check "$what" yes
            set_skill || fail "$what: not saved at the second try"
            ;;
        0*)
            check "$what" no
            [ $state = new ] || fail "$what: said to be saved, and is not"
            ;;
        *)
            check "$what" no
            [ $state = old ] || grep -q 'standard output' output || fail "$what: said not to be saved, and is"
            [ -s output ] || fail "$what: no message"
            refusals=$((refusals + 1))
            set_skill || fail "$what: not saved at the second try"
            ;;
        esac
        count=$((count + 1))
    done
    [ $status -eq 0 ] || fail "$1: failed without a fault"
}

refusals=0
losses=0
for call in write rename fsync unlink fchmod; do
    inject $call signal=KILL
done
for call in write rename fsync fchmod; do
    for error in ENOSPC EROFS EACCES EBUSY ENOENT; do
        inject $call error=$error
    done
done
for error in ENOSPC EACCES; do
    inject openat error=$error
done
[ $runs -gt 100 ] || fail "only $runs faults"
[ $refusals -gt 20 ] || fail "only $refusals refusals"
[ $losses -gt 0 ] || fail "no reference was lost"

# A project that takes more memory than the program has from its start, and loses nothing.
cp before/main.xml small.xml
awk '{ print } /<\/Level>/ && !many++ {
    print "<Level name=\"many\">"
    for (i = 1; i <= 6000; i++) printf "<Entity name=\"crate_%d\"/>\n", i
    print "</Level>"
}' small.xml | sed /things.xml/d >before/main.xml
same() {
    [ "$(undated "$1/main.xml")" = "$(undated "$2/main.xml")" ] && diff -r --exclude=main.xml "$1" "$2" >/dev/null
}
more=yes # what was saved is loaded again for its places
without_memory main.xml "$zoka" --yes project set project/main.xml level/harbour/entity/guard/skill/1=37
mv small.xml before/main.xml

# What is said where the folder went, or the file may not be written.
refused() { # what words
    if set_skill; then
        fail "$1: saved"
    fi
    grep -q "$2" output || fail "$1: another message"
}
again
mv project gone
mkdir project
refused "no project file" 'main.xml'
rmdir project
mv gone project
if [ "$(id -u)" -ne 0 ]; then
    chmod a-w project/main.xml
    refused "a read-only file" "Can't write .*main.xml"
    cmp -s project/main.xml before/main.xml || fail "a read-only file: written"
    [ ! -e project/main.xml.1.bak ] || fail "a read-only file: left a copy"
fi
echo "$runs runs with a fault, $spent without memory, $refusals of them refused, $losses with a reference lost: nothing harmed"
