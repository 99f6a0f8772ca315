#!/bin/bash
# Checks the Windows binaries as they would be shipped: binaries.sh WINDOWS_BUILD
#
# Each may import from libraries of the system only, can be moved in memory and keeps data
# from being run. The library has no handlers of structured exceptions and no debug sections.
set -euo pipefail
build=$1
findings=0
finding() {
    echo "$*"
    findings=1
}
system='kernel32|user32|gdi32|comctl32|comdlg32|shell32|shlwapi|ole32|oleaut32|advapi32|msvcrt|ntdll|version|psapi|dbghelp|ucrtbase'
objdump=i686-w64-mingw32-objdump

found=0
while IFS= read -r binary; do
    found=$((found + 1))
    headers=$($objdump -p "$binary")
    while IFS= read -r library; do
        grep -qiE "^($system)\.dll$" <<<"$library" || finding "$binary: imports from $library"
    done < <(sed -n 's/^\tDLL Name: //p' <<<"$headers")
    grep -q DYNAMIC_BASE <<<"$headers" || finding "$binary: lacks --dynamicbase"
    grep -q NX_COMPAT <<<"$headers" || finding "$binary: lacks --nxcompat"
    grep -qE '^Entry 5 [0-9a-f]+ 0*[1-9a-f]' <<<"$headers" || finding "$binary: has no relocations, so it can't be moved"
    [[ ${binary##*/} == zoka.dll ]] || continue
    grep -qE 'NO_SEH|no SEH' <<<"$headers" || finding "$binary: lacks --no-seh"
    ! $objdump -h "$binary" | grep -q '\.debug_' || finding "$binary: ships its debug sections"
    [ -s "${binary%.dll}.debug" ] || finding "$binary: has no symbols beside it"
done < <(find "$build/plugin" "$build/tools" -name '*.dll' -o -name '*.exe' | sort)
[ $found -gt 0 ] || finding "no binaries in $build"
exit $findings
