#!/bin/bash
# Checks that no source has been forgotten: sources.sh LINUX_BUILD [WINDOWS_BUILD] [ROOT]
#
# Every .cpp file must be compiled in each build that it is meant for: those in win/ folders
# on Windows, those in posix/ folders natively, all others in both. Without WINDOWS_BUILD ("") only the native ones are looked at. Benchmarks
# and fuzz targets have builds of their own; their folder's CMakeLists.txt must name them.
set -euo pipefail
linux=$1 windows=${2:-}
cd "${3:-$(dirname "$0")/../..}"
root=$(pwd)
findings=0
finding() {
    echo "$*"
    findings=1
}

# The sources that a build folder compiles, named from the root: by themselves, or several in one of the build's own.
compiled() { # build folder
    local file
    sed -nE 's/^ *"file": "(.*)",?$/\1/p' "$1/compile_commands.json" | while IFS= read -r file; do
        case $file in
        */Unity/*) sed -nE 's/^#include "(.*)"$/\1/p' "$file" ;;
        *) echo "$file" ;;
        esac
    done | sed -n "s|^$root/||p" | sort -u
}
in_linux=$(compiled "$linux")
in_windows=
[ -z "$windows" ] || in_windows=$(compiled "$windows")
is_in() { grep -qxF -- "$2" <<<"$1"; }

while IFS= read -r source; do
    case $source in
    bench/* | fuzz/*)
        list=${source%/*}/CMakeLists.txt # of its own folder
        grep -qwFs -- "$(basename "$source" .cpp)" "$list" || finding "$source: not named in $list"
        continue
        ;;
    */win/*) for_linux=no for_windows=yes ;;
    */posix/*) for_linux=yes for_windows=no ;;
    *) for_linux=yes for_windows=yes ;;
    esac
    [ $for_linux = no ] || is_in "$in_linux" "$source" || finding "$source: in no target of the native build"
    [ $for_windows = no ] || [ -z "$windows" ] || is_in "$in_windows" "$source" ||
        finding "$source: in no target of the Windows build"
done < <(find . -path ./build -prune -o -path './.*/*' -prune -o -type f -name '*.cpp' -print | sed 's|^\./||' | sort)
exit $findings
