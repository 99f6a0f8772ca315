#!/bin/bash
# Builds every preset and runs every test; the last line printed is "N passed, N failed".
# Ends with 1 if any failed or nothing ran. ZOKA_NO_WINE=1 leaves out the Windows half.
#
# What counts: each Google Test case, each other CTest test, each window test, each check of
# the repository. A test program that crashes, hangs, skips or switches a case off, or that
# fails after its last case (a leak, say), counts as failed.
set -uo pipefail
cd "$(dirname "$0")/../.." || exit 1
here=tools/check
logs=$PWD/build/logs
jobs=$(nproc)
mkdir -p "$logs"

passed=0
failed=0
failures= # a line for each, told once more in front of the total
add() { # what, passed, failed, names of what failed
    echo "$1: $2 passed, $3 failed"
    passed=$((passed + $2))
    failed=$((failed + $3))
    [ "$3" = 0 ] || failures+="FAILED in $1: ${4:-see above}"$'\n'
}

check() { # name, command...
    local name=$1 log=$logs/$1.log
    shift
    if "$@" >"$log" 2>&1; then
        add "check $name" 1 0
    else
        cat "$log"
        add "check $name" 0 1
    fi
}

build() { # preset
    local log=$logs/build-$1.log start=$SECONDS
    if (cmake --preset "$1" && cmake --build --preset "$1" -j "$jobs") >"$log" 2>&1; then
        echo "built $1 in $((SECONDS - start)) s"
    else
        # What failed, without the steps that went well; all of it is in the log.
        awk '/^FAILED: |^CMake Error/ { on = 1 } /^\[[0-9]+\/[0-9]+\] / { on = 0 } on' "$log" | head -n 60
        echo "the whole story is in build/logs/build-$1.log"
        add "build $1" 0 1
        return 1
    fi
}

# Names of the programs that ended badly, and of the cases that failed or were skipped.
not_passed() { # build folder, CTest's log
    {
        sed -nE 's/^[\t ]+[0-9]+ - ([^ ]+) (\(.*\))$/\1 \2/p' "$2"
        find "$1/tests" -name '*_tests.xml' -exec awk '
            /<testcase / {
                match($0, / classname="[^"]*"/) && name = substr($0, RSTART + 12, RLENGTH - 13)
                match($0, / name="[^"]*"/) && name = name "." substr($0, RSTART + 7, RLENGTH - 8)
            }
            /<failure / { print name }
            / status="notrun"/ || / result="skipped"/ { print name " (skipped)" }' {} +
    } | sort -u | paste -sd '|' | sed 's/|/, /g'
}

run_ctest() { # preset, command to run it with...
    local folder=$PWD/build/$1 log=$logs/test-$1.log preset=$1 counts start=$SECONDS
    shift
    # Results of an earlier run must not be taken for this one's.
    find "$folder/tests" -name '*_tests.xml' -delete
    rm -f "$folder/junit.xml"
    "$@" ctest --test-dir "$folder" -j "$jobs" --timeout 600 --output-on-failure \
        --output-junit "$folder/junit.xml" >"$log" 2>&1 || cat "$log"
    counts=$($here/count.sh "$folder")
    # shellcheck disable=SC2086 # two numbers
    add "tests $preset ($((SECONDS - start)) s)" $counts "$(not_passed "$folder" "$log")"
}

# The window tests mostly wait for windows, so they run beside the others.
start_window_tests() {
    timeout 1800 tests/window/run.sh -j "$jobs" build/windows >"$logs/test-window.log" 2>&1 &
    window_tests=$!
    # The demo follows them, beside what still runs.
    { tail --pid="$window_tests" -f /dev/null && exec tools/demo/run.sh; } >"$logs/demo-run.log" 2>&1 &
    demo=$!
    trap 'kill "$window_tests" "$demo"; exit 130' INT TERM
}

end_demo() {
    wait "$demo" || {
        cat "$logs/demo-run.log"
        return 1
    }
}

end_window_tests() {
    local log=$logs/test-window.log line status=0
    wait "$window_tests" || status=$?
    grep -av '^window tests: ' "$log"
    line=$(sed -nE 's/^window tests: ([0-9]+) passed, ([0-9]+) failed$/\1 \2/p' "$log" | tail -n 1)
    if [ -z "$line" ] || { [ "$status" != 0 ] && [ "${line#* }" = 0 ]; }; then
        echo "the runner of the window tests ended with $status"
        line="${line:-0 0}"
        line="${line% *} 1"
    fi
    # shellcheck disable=SC2086
    add "tests window" $line "$(sed -nE 's/^FAIL ([^ ]+) .*/\1/p' "$log" | paste -sd ' ')"
}

check includes $here/includes.sh
check lineends $here/lineends.sh
check format $here/format.sh
check hashes $here/hashes.sh
check doors $here/doors.sh
check checks tests/check/run.sh

linux= asan= tsan= windows=
build linux && linux=built
[ -z "$linux" ] || check names $here/names.sh
build linux-asan && asan=built
build linux-tsan && tsan=built
if [ "${ZOKA_NO_WINE:-}" = 1 ]; then
    echo "the Windows half is left out, because ZOKA_NO_WINE=1 is set"
    [ -z "$linux" ] || check sources $here/sources.sh build/linux
    [ -z "$linux" ] || check compiles $here/compiles.sh build/linux
else
    # The prefix is made ahead of the tests, so that its time is not counted as theirs, and mostly by waiting.
    tools/run/display.sh tools/run/wine.sh "$PWD/build/windows/wine" cmd /c exit >"$logs/wine.log" 2>&1 &
    prefix=$!
    if build windows; then
        [ -z "$linux" ] || check sources $here/sources.sh build/linux build/windows
        [ -z "$linux" ] || check compiles $here/compiles.sh build/linux build/windows
        check binaries $here/binaries.sh build/windows
        check guards $here/guards.sh build/windows
        if wait "$prefix"; then
            windows=built
            start_window_tests
        else
            cat "$logs/wine.log"
            add "wine" 0 1
        fi
    fi
fi
[ -z "$linux" ] || run_ctest linux
[ -z "$asan" ] || run_ctest linux-asan
[ -z "$tsan" ] || run_ctest linux-tsan
if [ -n "$windows" ]; then
    # What Wine starts beside a session's first programs (the desktop with the first that draws) keeps their output
    # open, and CTest would wait for its end.
    run_ctest windows tools/run/display.sh bash -c \
        'tools/run/wine.sh build/windows/wine build/windows/tests/ui/ui_tests.exe >/dev/null 2>&1 && exec "$@"' session
    end_window_tests
    check demo end_demo
fi

[ $((passed + failed)) -gt 0 ] || failed=1
printf '%s' "$failures"
line="$passed passed, $failed failed"
echo "$line" >"$logs/total"
echo "$line"
[ $failed = 0 ]
