#!/bin/sh
# Kills `zoka customize` at every system call that changes a file, and lets every such call, and every opening of
# a file of the project, fail once: a full disk, a broken one, a file that may not be written. Afterwards the script
# and each file beside it must be the old or the new one, whole; what failed must have said so; and the same
# command must do its work when it's given once more.
# usage: faults.sh PATH-OF-ZOKA SAMPLES-FOLDER. Status 77 where nothing can be traced.
zoka=$1
samples=$2
. "${0%/*}/../support/faults.sh"

# Whether each file is that of before/ or of after/. An update first writes the old script's values.
check() { # what
    for path in project/*; do
        name=${path#project/}
        case $name in
        '~zk'*.tmp | '~zk'*.lock) [ $status -eq 137 ] || fail "$1: left $name behind" ;;
        *)
            cmp -s "$path" "before/$name" || cmp -s "$path" "after/$name" || cmp -s "$path" "between/$name" ||
                fail "$1: $name is neither the old nor the new one"
            ;;
        esac
    done
    for path in before/*; do [ -e "project/${path#before/}" ] || fail "$1: ${path#before/} is lost"; done
}

# Runs the command once for each call of `$1` that it makes in the project, with `$2` injected there.
inject() { # call fault arguments...
    call=$1 fault=$2
    shift 2
    count=0
    while :; do
        count=$((count + 1))
        rm -rf project
        cp -R before project
        where=
        [ "$call" != openat ] || where="-P project -P project/fog.kez -P project/fog.kez.zoka -P project/fog.kez.zoka.old"
        # shellcheck disable=SC2086
        strace -f -o trace $where -e trace="$call" -e inject="$call:$fault:when=$count" \
            "$zoka" customize "$@" >output 2>&1
        status=$?
        grep -q 'INJECTED\|killed by SIGKILL' trace || break
        runs=$((runs + 1))
        check "$* with $call number $count, $fault"
        [ $status -eq 137 ] || [ $status -eq "$expected" ] || [ -s output ] || fail "$*: failed without a word"
        "$zoka" customize "$@" >output 2>&1
        cmp -s project/fog.kez after/fog.kez || fail "$*: the second try after $call number $count, $fault"
    done
    [ "$count" -gt 1 ] || [ "$call" = renameat2 ] || [ "$call" = unlink ] || [ "$call" = link ] ||
        fail "$*: makes no call of $call"
    diff -r project after >/dev/null || fail "$*: not the same without a fault"
}

faults() { # arguments...
    rm -rf after project
    cp -R before project
    "$zoka" customize "$@" >output 2>&1
    expected=$?
    [ $expected -le 1 ] || fail "$* without a fault"
    cp -R project after
    cmp -s before/fog.kez after/fog.kez && fail "$* changed nothing"
    for call in write rename renameat2 link fsync unlink openat; do inject "$call" signal=KILL "$@"; done
    for call in write rename fsync; do inject "$call" error=ENOSPC "$@"; done
    inject fsync error=EIO "$@"
    inject openat error=EACCES "$@"
}

mkdir before between
cp "$samples/templates/fog.kez" before
faults set project/fog.kez 1=45 7=1 "8=other.tga" # the value file is new
rm -rf before
cp -R after before
faults set project/fog.kez 1=50
faults reset project/fog.kez -t "$samples/templates"
"$zoka" customize export before/fog.kez -o - >between/fog.kez.zoka
faults update project/fog.kez -t "$samples/templates-newer"

# A script of many values, which takes more memory than the program has from its start.
rm -rf before
mkdir before
awk 'BEGIN { for (i = 1; i <= 20000; i++) printf "// entry: Value %d\r\n// id: %d\r\nvar v%d = %d;\r\n", i, i, i, i }' >before/big.kez
without_memory big.kez "$zoka" customize set project/big.kez 3=77
mkdir newer
sed 's/^var v7 = .*/var v7 = 5;\r\n\/\/ more\r/' before/big.kez >newer/big.kez
without_memory big.kez "$zoka" customize update project/big.kez -t newer
rm -rf before
mkdir before
cp "$samples/templates/fog.kez" before

# Two programs that set a value each at the same time: both values are there afterwards. ROUNDS=1000 for long.
rm -rf project
cp -R before project
round=0
while [ $round -lt "${ROUNDS:-20}" ]; do
    round=$((round + 1))
    "$zoka" customize set project/fog.kez 1=$((20 + round % 30)) >output 2>&1 &
    first=$!
    "$zoka" customize set project/fog.kez 7=$((round % 2)) >output2 2>&1 || fail "round $round: the second writer"
    wait $first || fail "round $round: the first writer"
    [ "$("$zoka" customize get project/fog.kez 1)" = $((20 + round % 30)) ] &&
        [ "$("$zoka" customize get project/fog.kez 7)" = $((round % 2)) ] ||
        fail "round $round of two writers: a value is lost"
done

# A link in the place of a generated file is refused, and what it leads to stays.
echo precious >outside
ln -sf ../outside project/fog.kez.zoka
"$zoka" customize export project/fog.kez >output 2>&1 && fail "exported through a link"
[ "$(cat outside)" = precious ] || fail "a link was written through"
echo "$runs runs with a fault, $spent without memory, no file damaged; $round rounds of two writers, nothing lost"
