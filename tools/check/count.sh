#!/bin/bash
# Counts the results of a CTest run in a build folder: prints "PASSED FAILED".
#
# CTest's own results (junit.xml) say how each program ended; a program of Google Test also
# leaves NAME.xml with its cases. A program that ended badly although all its cases passed,
# or that never wrote its results, has failed once more. A case skipped or switched off has
# not passed.
set -euo pipefail
folder=$1
if [ ! -f "$folder/junit.xml" ]; then
    echo 0 1
    exit
fi
sed -nE 's/.*<testcase name="([^"]*)".* status="([^"]*)".*/\1 \2/p' "$folder/junit.xml" |
    while read -r name status; do
        results=$(find "$folder/tests" -name "$name.xml" -print -quit)
        if [ -n "$results" ]; then
            awk -v status="$status" '
                function number(name) {
                    return match($0, " " name "=\"[0-9]+\"") ? substr($0, RSTART + length(name) + 3) + 0 : 0
                }
                /<testsuites / {
                    tests = number("tests")
                    failed = number("failures") + number("errors") + number("disabled")
                }
                /<testsuite / { skipped += number("skipped") }
                END {
                    failed += skipped
                    passed = tests - failed
                    if (tests == 0 || (failed == 0 && status != "run")) failed++
                    print passed, failed
                }' "$results"
        elif [ "$status" = run ] && [[ $name != *_tests ]]; then
            echo 1 0
        else
            echo 0 1
        fi
    done |
    awk '{ passed += $1; failed += $2 } END { if (NR == 0) failed = 1; print passed + 0, failed + 0 }'
