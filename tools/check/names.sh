#!/bin/bash
# Checks that what headers declare is named as .clang-tidy says: names.sh [ROOT]. Prints each name that isn't.
# Wants the native build configured.
#
# All headers of the library and its tools are read in two runs, because reading the libraries' headers is what takes
# time: the portable ones as the native build reads them, those in win/ folders as the Windows build does.
set -euo pipefail
cd "${1:-$(dirname "$0")/../..}"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

library=$(i686-w64-mingw32-g++-posix -print-file-name=include/c++)
windows="--target=i686-w64-mingw32 -nostdinc++ -isystem $library -isystem $library/i686-w64-mingw32 -DNOMINMAX
    -DWIN32_LEAN_AND_MEAN -DWINVER=0x0601 -D_WIN32_WINNT=0x0601"
while IFS= read -r header; do
    [[ $header == */win/* ]] && build=windows || build=native
    printf '#include "%s"\n' "$header" >>"$scratch/$build.cpp"
done < <(find . \( -path './.*' -o -path ./build -o -path ./tests -o -path ./bench -o -path ./fuzz \) -prune \
    -o -type f -name '*.h' -print | sed 's|^\./||' | sort)

look() { # build, compiler options
    local output
    [ -e "$scratch/$1.cpp" ] || return 0
    # shellcheck disable=SC2086 # options are words
    output=$(clang-tidy --quiet --config-file=.clang-tidy "$scratch/$1.cpp" -- -std=c++20 -I. \
        -isystem build/linux/libs/include $2 2>&1) && return
    grep -E ': (fatal )?error: ' <<<"$output" || echo "$output"
    return 1
}
look native "" &
status=0
look windows "$windows" || status=1
wait $! || status=1
exit $status
