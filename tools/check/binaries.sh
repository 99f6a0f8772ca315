#!/bin/bash
# Checks the Windows binaries as they would be shipped: binaries.sh WINDOWS_BUILD
#
# Each may import from libraries of the system only, can be moved in memory, keeps data from being run and has the
# guard of stack frames (guards.sh sees that our own frames use it). The library has no handlers of structured
# exceptions and no debug sections; what it exports are three undecorated entry points and otherwise members of the
# exported classes alone.
set -euo pipefail
build=$1
findings=0
finding() {
    echo "$*"
    findings=1
}
system='kernel32|user32|gdi32|comctl32|comdlg32|shell32|shlwapi|ole32|oleaut32|advapi32|msvcrt|ntdll|version|psapi|dbghelp|ucrtbase'
objdump=i686-w64-mingw32-objdump
entry_points='PIGetPIInfo PIGetProcDef PIInitialize'
classes='CEngineReq CFName CFileFinder CLex CScriptElm CTemplateData dmemfile_t dname_t file_t fname_t partof_file_t smemfile_t'

# The exported names, one a line: of a class's members, tables and thunks the class, of all else the name itself.
exports() { # headers
    sed -n '\|^\[Ordinal/Name Pointer\] Table|,$ s/^\t\[ *[0-9]*\] //p' <<<"$1" | awk '
        match($0, /^_Z(T[VIS]|NK?|Th[0-9]+_NK?)[0-9]/) {
            name = substr($0, RLENGTH) # begins with the name'"'"'s length
            digits = name
            sub(/[^0-9].*/, "", digits)
            print "class " substr(name, length(digits) + 1, digits)
            next
        }
        { print "entry " $0 }' | LC_ALL=C sort -u
}

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
    grep -qa 'stack smashing detected' "$binary" || finding "$binary: its stack frames are not guarded"
    [[ ${binary##*/} == zoka.dll ]] || continue
    ! grep -q CryptAcquireContext <<<"$headers" || finding "$binary: asks a provider for the word of its stack frames at its start"
    exported=$(exports "$headers")
    for kind in entry class; do
        [ $kind = entry ] && wanted=$entry_points || wanted=$classes
        # shellcheck disable=SC2086 # names
        differences=$(diff <(printf '%s\n' $wanted) <(sed -n "s/^$kind //p" <<<"$exported") | sed -n 's/^[<>]/&/p') ||
            true
        [ -z "$differences" ] || finding "$binary: exports not (<) or besides (>) its $kind names:" $differences
    done
    grep -qE 'NO_SEH|no SEH' <<<"$headers" || finding "$binary: lacks --no-seh"
    [[ $($objdump -h "$binary") != *.debug_* ]] || finding "$binary: ships its debug sections"
    [ -s "${binary%.dll}.debug" ] || finding "$binary: has no symbols beside it"
done < <(find "$build/plugin" "$build/tools" -name '*.dll' -o -name '*.exe' | sort)
[ $found -gt 0 ] || finding "no binaries in $build"
exit $findings
