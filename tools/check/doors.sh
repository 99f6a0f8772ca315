#!/bin/bash
# Checks that nothing thrown leaves a function that the system calls: doors.sh [ROOT]
#
# Every procedure of a window or thread, timer and other callback either lets its work be done inside of something that
# catches, or says noexcept, because it calls nothing that throws.
set -euo pipefail
cd "${1:-$(dirname "$0")/../..}"
mapfile -t sources < <(grep -rlE '(CALLBACK|WINAPI|NTAPI) ' --include='*.cpp' --include='*.h' --exclude-dir=build --exclude-dir='.?*' \
    --exclude-dir=tests --exclude-dir=bench --exclude-dir=fuzz --exclude-dir=tools . | sed 's|^\./||' | sort)
[ ${#sources[@]} -gt 0 ] || {
    echo "no callback in $PWD"
    exit 1
}
awk '
    # A definition, from its name to the brace that closes it: the only one that stands as far to the left.
    match($0, /(CALLBACK|WINAPI|NTAPI) +[A-Za-z_:]+\(/) {
        name = substr($0, RSTART, RLENGTH - 1)
        sub(/^[A-Z]+ +/, "", name)
        text = ""
        line = FNR
        match($0, /^ */)
        indent = substr($0, 1, RLENGTH)
    }
    name != "" {
        text = text $0 "\n"
        if (text !~ /\{/ && /;$/) {
            name = "" # a declaration
        } else if ($0 == indent "}") {
            head = substr(text, 1, index(text, "{"))
            if (head !~ /noexcept/ && text !~ /(answerInside|keepInside|dispatch)\(|catch \(/) {
                printf "%s:%d: %s may let an exception out\n", FILENAME, line, name
                findings = 1
            }
            name = ""
        }
    }
    END { exit findings }' "${sources[@]}"
