#!/bin/bash
# Checks that the stack frames of our own code are guarded: guards.sh BUILD [ROOT]
#
# Every source that keeps characters in an array on the stack, but for those of the other system, must have an object in
# BUILD, and each that it has must call the check of its frame. What the linker adds is guarded already by those who made
# it, so a look at the finished binary tells nothing about ours. NM is the symbol lister, that of the cross compiler
# unless it is set.
set -euo pipefail
build=$1
cd "${2:-$(dirname "$0")/../..}"
findings=0 seen=none
# Its objects: ui/CMakeFiles/zoka_ui.dir/win/WinPrompt.cpp.obj is of ui/win/WinPrompt.cpp. Those of the build that compiles
# it together with others are theirs too; one flag holds for all that is in an object.
objects_of() { # source
    local object unity
    while IFS= read -r object; do
        [ "$(sed -E 's|CMakeFiles/[^/]*\.dir/||; s|\.obj?$||' <<<"${object#"$build"/}")" != "$1" ] || echo "$object"
    done < <(find "$build" -path '*.dir/*' -name "${1##*/}.o*")
    while IFS= read -r unity; do
        find "${unity%/*}" -name "${unity##*/}.o*"
    done < <(find "$build" -path '*.dir/Unity/*.cxx' -exec grep -lE "^#include \"(.*/)?$1\"\$" {} +)
}
# Within functions: members are indented too, but those of classes in sources are named m_.
arrays='^[[:space:]]+(char|wchar_t|BYTE) [a-z][A-Za-z]*\[[^]]+\][^()]*;'
while IFS= read -r source; do
    seen=0
    while IFS= read -r object; do
        seen=$((seen + 1))
        [[ $("${NM:-i686-w64-mingw32-nm}" "$object") == *__stack_chk_fail* ]] && continue
        echo "$source: its stack frames are not guarded"
        findings=1
    done < <(objects_of "$source")
    [ $seen -gt 0 ] || {
        echo "$source: has no object in $build"
        findings=1
    }
done < <(grep -rlE "$arrays" --include='*.cpp' --exclude-dir=build --exclude-dir='.?*' --exclude-dir=tests --exclude-dir=bench --exclude-dir=fuzz --exclude-dir=posix . | sed 's|^\./||' | sort)
[ $seen != none ] || {
    echo "no source with an array in $PWD"
    findings=1
}
exit $findings
