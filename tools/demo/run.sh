#!/bin/bash
# Shows the plug-in at work: run.sh. Wants the Windows build (build/windows) and what set-up installs.
#
# The stand-in editor loads the real library in real windows on a display that no screen shows, opens the sample
# project and both panels. Pictures of it and the log of all calls are left in build/demo.
set -euo pipefail
cd "$(dirname "$0")/../.."
root=$(pwd)
if [ "${ZOKA_NO_WINE:-}" = 1 ]; then
    echo "the demo runs under Wine, and ZOKA_NO_WINE=1 is set" >&2
    exit 1
fi
build=$root/build/windows
demo=$root/build/demo
rm -rf "$demo"
mkdir -p "$demo/suite"
cp -r samples/project "$demo/project"
cp -r samples/templates "$demo/suite/templates"

windows_path() { echo "Z:${1//\//\\}"; }

echo "running the plug-in in the stand-in editor"
status=0
tools/run/display.sh timeout -k 2 90 tools/run/wine.sh "$build/wine" "$build/tools/editor/zunhost.exe" \
    --drive "$(windows_path "$root/tools/demo/demo.drive")" --limit 60 \
    --log "$(windows_path "$demo/calls.log")" --pictures "$(windows_path "$demo")" \
    --suite "$(windows_path "$demo/suite")" \
    --set "PROJECT=$(windows_path "$demo/project")" --set "OUT=$(windows_path "$demo")" \
    --set "DLL=$(windows_path "$build/plugin/zoka.dll")" || status=$?
if [ -e "$demo/calls.log" ]; then
    echo "every call between the editor and the plug-in (build/demo/calls.log):"
    sed 's/^/    /' "$demo/calls.log"
fi
if [ $status != 0 ]; then
    echo "the demo ended with $status" >&2
    exit 1
fi
echo "pictures:"
for picture in "$demo"/*.png; do echo "    build/demo/$(basename "$picture")"; done
