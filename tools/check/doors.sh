#!/bin/bash
# Checks that nothing thrown leaves a function that the system calls: doors.sh [ROOT]
#
# Every procedure of a window or thread, timer and other callback either does all of its work inside of something that
# catches, or says noexcept, because it calls nothing that throws. Beside the one guarded statement there may be only
# variables of plain values in front of it, and behind it a return that calls nothing.
set -euo pipefail
cd "${1:-$(dirname "$0")/../..}"
mapfile -t sources < <(grep -rlE '(CALLBACK|WINAPI|NTAPI) ' --include='*.cpp' --include='*.h' --exclude-dir=build --exclude-dir='.?*' \
    --exclude-dir=tests --exclude-dir=bench --exclude-dir=fuzz --exclude-dir=tools . | sed 's|^\./||' | sort)
[ ${#sources[@]} -gt 0 ] || {
    echo "no callback in $PWD"
    exit 1
}
awk '
    function isOutermost(body,    lines, i, n, guarded, line) {
        n = split(body, lines, "\n")
        for (i = 1; i <= n; i++) {
            # The first lines of statements alone, and what stands as far to the left, such as their closing braces.
            if (substr(lines[i], 1, length(indent) + 4) != indent "    ") continue
            line = substr(lines[i], length(indent) + 5)
            if (line ~ /^( |\/\/|$)/) continue
            if (!guarded) {
                if (line ~ /^((return )?(zoka::)?(answerInside|keepInside)\(|try \{)/) guarded = 1
                else if (line !~ /^[A-Za-z_:0-9]+ [A-Za-z]+ = [A-Za-z_0-9]+;/) return 0
            } else if (line !~ /^(return [^(]*;|[})])/) {
                return 0
            }
        }
        return guarded
    }
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
            if (head !~ /noexcept/ && !isOutermost(substr(text, length(head) + 2))) {
                printf "%s:%d: %s may let an exception out\n", FILENAME, line, name
                findings = 1
            }
            name = ""
        }
    }
    END { exit findings }' "${sources[@]}"
