#!/bin/sh
# Kills `zoka scripts add`, `remove`, `update` and `restore` at every system call that changes a file, and lets every
# such call fail once, as on a full disk; files that take no writing and folders that take no file too. Afterwards
# each file of the project must be the old or the new one, whole. Temporary files may stay behind after a kill alone,
# and what failed must have said so.
# usage: faults.sh PATH-OF-ZOKA TEMPLATE-FOLDER. Status 77 where nothing can be traced.
zoka=$1
suite=$2
. "${0%/*}/../support/faults.sh"

# Whether every file of the project is one of before/ or after/, and none is lost.
check() { # stray-allowed what
    for path in project/*; do
        name=${path#project/}
        case $name in
        '~zk'*.tmp | '~zk'*.lock)
            [ "$1" = yes ] || fail "$2: left $name behind"
            ;;
        *.zoka) # first written with the old script's version, before the script is touched
            sed 2s/.*/0/ "after/$name" | cmp -s "$path" || cmp -s "$path" "after/$name" ||
                fail "$2: $name is neither the values of the old nor of the new script"
            ;;
        *)
            cmp -s "$path" "before/$name" || cmp -s "$path" "after/$name" ||
                fail "$2: $name is neither the old nor the new one"
            ;;
        esac
    done
    for path in before/*; do
        name=${path#before/}
        [ -e "project/$name" ] || [ ! -e "after/$name" ] || fail "$2: $name is lost"
    done
    [ -e project/main.kez ] || fail "$2: the main script is lost"
}

# Runs the command with the fault injected into call number `$3` of `$1`; false when it makes no such call.
once() { # call fault number stray-allowed arguments...
    call=$1 fault=$2 number=$3 stray=$4
    shift 4
    rm -rf project
    cp -R before project
    strace -f -o trace -e trace="$call" -e inject="$call:$fault:when=$number" \
        "$zoka" scripts "$@" -p project -t "$suite" -m project/main.kez >output 2>&1
    status=$?
    grep -q 'INJECTED\|killed by SIGKILL' trace || return 1
    runs=$((runs + 1))
    check "$stray" "$* with $call number $number, $fault"
    case "$status $1" in
    137* | 0*) ;;
    *restore) grep -q 'Copy error (1128)' output || fail "$*: failed without its message" ;;
    *) [ -s output ] || fail "$*: failed without a word" ;;
    esac
}

# Injects the fault into each call of `$1` in turn.
inject() { # call fault stray-allowed arguments...
    call=$1 fault=$2 stray=$3
    shift 3
    count=1
    while once "$call" "$fault" "$count" "$stray" "$@"; do
        count=$((count + 1))
    done
    [ $status -eq 0 ] && diff -r project after >/dev/null || fail "$*: not the same without a fault"
    case $call in rename* | link) renames=$((renames + count - 1)) ;; esac
}

# Injects the error into each opening of a file whose mode fits `$1`.
refuse() { # modes error arguments...
    modes=$1 error=$2
    shift 2
    rm -rf project
    cp -R before project
    strace -f -o trace -e trace=openat "$zoka" scripts "$@" -p project -t "$suite" -m project/main.kez >output 2>&1
    grep openat trace | grep -n "$modes" | cut -d: -f1 >numbers
    [ -s numbers ] || fail "$*: opens nothing for writing"
    while read -r number; do
        once openat "error=$error" "$number" no "$@" || fail "$*: openat number $number is another one this time"
    done <numbers
}

faults() { # arguments...
    rm -rf after project
    cp -R before project # value files name the folder, so both runs are in one of that name
    "$zoka" scripts "$@" -p project -t "$suite" -m project/main.kez >output 2>&1 || fail "$* without a fault"
    mv project after
    diff -r before after >/dev/null && fail "$* changed nothing"
    renames=0
    for call in write rename renameat2 link fsync ftruncate pwrite64 unlink; do
        inject "$call" signal=KILL yes "$@"
    done
    for call in write rename renameat2 link fsync; do
        inject "$call" error=ENOSPC no "$@"
    done
    [ $renames -gt 0 ] || fail "$*: puts no file into its place"
    refuse O_CREAT ENOSPC "$@"            # no room for a file more
    refuse 'O_WRONLY\|O_RDWR' EACCES "$@" # read-only
}

mkdir before
printf '// main\r\n\r\nfunction main()\r\n{\r\n}' >before/main.kez
faults add turret.kez camera_.kez camera_.kez
rm -rf before
cp -R after before
faults remove turret.kez
rm -rf before
mkdir before
printf '// main\r\ninclude <fog.kez>;\r\ninclude <door_slide.kez>;\r\n' >before/main.kez
for name in fog.kez door_slide.kez; do
    sed 's/^\/\/ *ver:.*/\/\/ ver: 0\r/' "$suite/$name" >"before/$name"
done
faults update --yes
rm before/fog.kez
faults restore fog.kez

# A main script and a script that take more memory than the program has from its start.
rm -rf before
mkdir before newer
cp "$suite"/* newer/ 2>/dev/null
awk 'BEGIN { print "// main\r"; for (i = 1; i <= 20000; i++) printf "include <none_%d.kez>;\r\n", i }' >before/main.kez
without_memory main.kez "$zoka" scripts add fog.kez -p project -t newer -m project/main.kez

# Two programs that add a script each at the same time: both are included. ROUNDS=1000 for long.
round=0
while [ $round -lt "${ROUNDS:-20}" ]; do
    round=$((round + 1))
    rm -rf project
    mkdir project
    printf '// main\r\n' >project/main.kez
    "$zoka" scripts add fog.kez -p project -t "$suite" -m project/main.kez >output 2>&1 &
    first=$!
    "$zoka" scripts add turret.kez -p project -t "$suite" -m project/main.kez >output2 2>&1
    wait $first
    grep -q 'include <fog.kez>' project/main.kez && grep -q 'include <turret.kez>' project/main.kez ||
        fail "round $round of two writers: a line is lost"
done
# A link in the place of a generated file (a script's copy, its values, the catalogue, a page) is refused with a word,
# one in that of a backup or a numbered copy is passed over; what it leads to stays, or is not made. The main script,
# which the user named, is written through one.
links=0
through() { # link arguments...
    link=$1
    shift
    for target in precious missing; do
        rm -rf project pages suite "$link"
        cp -R before project
        cp -R "$suite" suite
        mkdir pages
        echo precious >precious
        rm -f missing "$link"
        ln -s "$PWD/$target" "$link"
        "$zoka" "$@" >output 2>&1
        status=$?
        [ "$(cat precious)" = precious ] || fail "$*: wrote through the link $link"
        [ ! -e missing ] || fail "$*: made a file through the link $link"
        [ -L "$link" ] || fail "$*: the link $link is gone"
        case $link in
        *.bak | *_0.kez) [ $status -eq 0 ] || fail "$*: failed because of the link $link, $status" ;;
        *) [ $status -ne 0 ] && grep -q link output || fail "$*: refused the link $link without a word, $status" ;;
        esac
        links=$((links + 1))
    done
}
rm -rf before
mkdir before
printf '// main\r\ninclude <fog.kez>;\r\n' >before/main.kez
sed -e 's/^\/\/ *ver:.*/\/\/ ver: 0\r/' -e '$a // mine\r' "$suite/fog.kez" >before/fog.kez
through project/fog.kez scripts update --yes -p project -t suite -m project/main.kez
through project/fog.kez.zoka scripts update --yes -p project -t suite -m project/main.kez
through project/fog.kez.1.bak scripts update --yes -p project -t suite -m project/main.kez
through project/camera_0.kez scripts add camera_.kez -p project -t suite -m project/main.kez
through suite/template_6.xml catalogue build suite
through pages/css.css help-pages "$suite/template_6.xml" -o pages
rm -rf project
cp -R before project
mv project/main.kez real.kez
ln -s "$PWD/real.kez" project/main.kez
"$zoka" scripts add turret.kez -p project -t "$suite" -m project/main.kez >output 2>&1 || fail "the main script through a link"
[ -L project/main.kez ] && grep -q 'include <turret.kez>' real.kez || fail "the main script's link was not followed"
echo "$runs runs with a fault, $spent without memory, no file damaged; $round rounds of two writers, nothing lost; $links links not followed"
