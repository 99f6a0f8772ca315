#!/bin/bash
# Runs a Windows program under 32-bit Wine: wine.sh PREFIX PROGRAM ARGUMENT...
#
# PREFIX is the folder of Wine's own C: drive and registry; it is made at the first use,
# which takes some 15 seconds. Nothing in it refers to the user's home. A crash ends the
# program instead of starting a debugger.
set -euo pipefail
WINEPREFIX=$1
shift
export WINEPREFIX WINEARCH=win32 WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=;winemenubuilder.exe="
mkdir -p "$WINEPREFIX"
if [ ! -e "$WINEPREFIX/made" ]; then
    (
        flock 9 # several programs may come first at the same time
        if [ ! -e "$WINEPREFIX/made" ]; then
            mkdir -p "$WINEPREFIX/home"
            HOME=$WINEPREFIX/home timeout 180 wineboot --init >"$WINEPREFIX/making.log" 2>&1 9>&- || {
                cat "$WINEPREFIX/making.log" >&2
                exit 1
            }
            wineserver -w # the registry is on the disk only then
            touch "$WINEPREFIX/made"
        fi
    ) 9>"$WINEPREFIX/lock"
fi
exec wine "$@"
