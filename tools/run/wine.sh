#!/bin/bash
# Runs a Windows program under 32-bit Wine: wine.sh PREFIX PROGRAM ARGUMENT...
#
# PREFIX is the folder of Wine's own C: drive and registry; it is made at the first use,
# which takes some 15 seconds. Nothing in it refers to the user's home. A crash ends the
# program instead of starting a debugger.
set -euo pipefail
WINEPREFIX=$(realpath -m "$1")
shift
export WINEPREFIX WINEARCH=win32 WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=;winemenubuilder.exe="
mkdir -p "$WINEPREFIX"
if [ ! -e "$WINEPREFIX/ready" ]; then
    (
        flock 9 # several programs may come first at the same time
        if [ ! -e "$WINEPREFIX/ready" ]; then
            mkdir -p "$WINEPREFIX/home"
            HOME=$WINEPREFIX/home timeout 180 wineboot --init >"$WINEPREFIX/making.log" 2>&1 9>&- || {
                cat "$WINEPREFIX/making.log" >&2
                exit 1
            }
            # Wine draws the frames of windows itself: waiting for a window manager that isn't
            # there takes 2 s for each. Its own fonts are those that Windows programs ask for.
            wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >>"$WINEPREFIX/making.log" 2>&1 9>&-
            mkdir -p "$WINEPREFIX/drive_c/windows/Fonts"
            ln -sf /usr/share/wine/fonts/*.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
            wineserver -w # the registry is on the disk only then
            touch "$WINEPREFIX/ready"
        fi
    ) 9>"$WINEPREFIX/lock"
fi
exec wine "$@"
