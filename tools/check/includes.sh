#!/bin/bash
# Checks who includes whom: includes.sh [ROOT]. Prints each finding as file:line: text and
# ends with 1 if there is any. The table below is the one place where the order of the
# folders stands; docs/architecture.md explains it.
set -euo pipefail
cd "${1:-$(dirname "$0")/../..}"

find . -path ./build -prune -o -path './.*/*' -prune -o -type f \
    \( -name '*.h' -o -name '*.cpp' -o -name '*.inc' -o -name '*.rc' \) -print0 |
    xargs -0 -r awk '
function may(folder, list,    names, i, n) {
    known[folder] = 1
    allowed[folder, folder] = 1
    n = split(list, names, " ")
    for (i = 1; i <= n; i++) allowed[folder, names[i]] = 1
}
# The folder of the table that a file is in: its topmost one, but for the host side of the plug-in.
function place(path) {
    if (path ~ /^plugin\/host\//) return "plugin/host"
    sub(/\/.*/, "", path)
    return path
}
function finding(text) {
    printf "%s:%d: %s\n", file, FNR, text
    found = 1
}
BEGIN {
    base = "util plugin/host xml ui"
    product = base " controls J8ProjectManager J8ProjectWizard customize templates plugin"
    may("util", "")
    may("plugin/host", "util")
    may("xml", "util")
    may("ui", "util")
    may("controls", base)
    may("J8ProjectManager", base " controls")
    may("J8ProjectWizard", base " controls J8ProjectManager")
    may("customize", base " controls J8ProjectManager")
    may("templates", base " controls J8ProjectManager customize")
    may("plugin", product)
    may("tools", product)
    may("bench", product " tests tools")
    may("fuzz", product " tests")
    may("tests", product " tools")
    windows = "windows windowsx commctrl commdlg shellapi shlobj shlwapi objbase ole2 oleauto " \
        "winbase wingdi winnt winuser winternl tlhelp32 psapi richedit uxtheme dbghelp process direct io"
    n = split(windows, names, " ")
    for (i = 1; i <= n; i++) system_header["<" names[i] ".h>"] = 1
}
FNR == 1 {
    file = substr(FILENAME, 3)
    folder = place(file)
    in_win = file ~ /\/win\//
    if (!(folder in known)) finding("the folder " folder " is not in the table of who includes whom")
    if (file ~ /\.rc$/ && !in_win) finding("a resource script belongs in a win/ folder")
}
/^[ \t]*#[ \t]*include[ \t]*[<"]/ {
    name = $0
    sub(/^[ \t]*#[ \t]*include[ \t]*/, "", name)
    if (name ~ /^</) {
        sub(/>.*/, ">", name)
        if ((tolower(name) in system_header) && !in_win)
            finding(name " may be included in win/ folders only")
        next
    }
    name = substr(name, 2)
    sub(/".*/, "", name)
    if (name !~ /\//) {
        finding("\"" name "\" is not named from the root")
        next
    }
    if (name ~ /^ui\/win\// && !in_win) {
        finding("\"" name "\" may be included in win/ folders only")
        next
    }
    if ((folder, place(name)) in allowed) next
    finding(folder " may not include \"" name "\"")
}
END { exit found }' || exit 1
