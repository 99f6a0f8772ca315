#!/bin/bash
# Shows the plug-in at work: run.sh [WINDOWS_BUILD]. Wants the Windows build (build/windows) and what set-up installs.
#
# The stand-in editor loads the real library in real windows on a display that no screen shows, opens the sample
# project and both panels. Pictures of it and the log of all calls are left in build/demo.
set -euo pipefail
cd "$(dirname "$0")/../.."
if [ "${ZOKA_NO_WINE:-}" = 1 ]; then
    echo "the demo runs under Wine, and ZOKA_NO_WINE=1 is set" >&2
    exit 1
fi
build=$(realpath "${1:-build/windows}")
demo=$PWD/build/demo
rm -rf "$demo"
mkdir -p "$demo/suite"
cp -r samples/project "$demo/harbour"
cp -r samples/templates "$demo/suite/templates"
cp "$build/plugin/zoka.dll" tools/demo/demo.drive "$demo/"

# Under Wine the demo's folder is a drive of its own, so that its paths are short and the same everywhere.
show() {
    tools/run/wine.sh "$build/wine" cmd /c exit
    ln -sfn "$demo" "$build/wine/dosdevices/p:"
    timeout -k 2 90 tools/run/wine.sh "$build/wine" "$build/tools/editor/zunhost.exe" --drive 'P:\demo.drive' \
        --limit 60 --log 'P:\calls.log' --pictures 'P:' --suite 'P:\suite' \
        --set 'PROJECT=P:\harbour' --set 'DLL=P:\zoka.dll' --set 'OUT=P:'
}
export -f show
export build demo

echo "running the plug-in in the stand-in editor"
status=0
tools/run/display.sh bash -euc show >"$demo/output.txt" 2>&1 || status=$?
if [ -e "$demo/calls.log" ]; then
    echo "every call between the editor and the plug-in (build/demo/calls.log):"
    sed 's/^/    /' "$demo/calls.log"
fi
if [ $status != 0 ]; then
    cat "$demo/output.txt" >&2
    echo "the demo ended with $status" >&2
    exit 1
fi
echo "pictures:"
for picture in "$demo"/*.png; do echo "    build/demo/$(basename "$picture")"; done
