#!/bin/bash
# Checks that the benchmarks and fuzz targets compile: compiles.sh LINUX_BUILD [WINDOWS_BUILD] [ROOT]
#
# The test run builds none of them, which takes long, but reads each with the flags that the tool's own sources have in
# that build: those in win/ folders as the Windows build would, all others natively. Without WINDOWS_BUILD ("") only the
# native ones are read. A source of several targets is read once for each definition that its CMakeLists.txt gives them.
set -euo pipefail
linux=$(realpath "$1") windows=${2:+$(realpath "$2")}
cd "${3:-$(dirname "$0")/../..}"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

flags_of() { # build: how it compiles, without what is of one source
    sed -nE '\|-c [^ ]*/tools/cli/main.cpp"|s/^ *"command": "(.*) -o [^ ]+ -c .*$/\1/p' "$1/compile_commands.json" |
        sed 's/\\"/"/g; s/\\\\/\\/g' | head -n 1
}

# Of the targets of this list of targets that a source is in; an empty line where they have none.
definitions_of() { # source
    awk -v name="$(basename "$1")" '
        { gsub(/[()]/, " ") }
        $1 == "add_executable" { for (i = 3; i <= NF; i++) if ($i == name) has[$2] = 1 }
        $1 == "target_compile_definitions" && $2 in has { print "-D" $4; any = 1 }
        END { if (!any) print "" }' "$(dirname "$1")/CMakeLists.txt"
}

cat >"$scratch/read" <<'END'
eval "$1 $3 -fsyntax-only '$2'"
END
sources=0
while IFS= read -r source; do
    build=$linux
    [[ $source != */win/* ]] || build=$windows
    sources=$((sources + 1))
    [ -n "$build" ] || continue
    flags=$(flags_of "$build")
    [ -n "$flags" ] || {
        echo "$build: nothing tells how tools/cli/main.cpp is compiled" >&2
        exit 1
    }
    while IFS= read -r definition; do
        printf '%s\0' "$flags" "$source" "$definition"
    done < <(definitions_of "$source")
done < <(find bench fuzz -name '*.cpp' | sort) >"$scratch/all"
[ $sources -gt 0 ] || {
    echo "no benchmark or fuzz target in $PWD"
    exit 1
}
xargs -0 -n 3 -P "$(nproc)" bash "$scratch/read" <"$scratch/all"
