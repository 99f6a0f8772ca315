#!/bin/bash
# Shows the plug-in at work: run.sh [WINDOWS_BUILD]. Wants the Windows build (build/windows) and what set-up installs.
#
# The stand-in editor loads the real library in real windows on a display that no screen shows, opens the sample
# project and both panels, and adds, removes and updates scripts. Pictures of it, the logs of all calls and the main
# script after each step are left in build/demo.
set -euo pipefail
cd "$(dirname "$0")/../.."
if [ "${ZOKA_NO_WINE:-}" = 1 ]; then
    echo "the demo runs under Wine, and ZOKA_NO_WINE=1 is set" >&2
    exit 1
fi
build=$(realpath "${1:-build/windows}")
demo=$PWD/build/demo
wine=$build/wine-demo # a session of its own, which it ends: tests may run beside it
rm -rf "$demo"
mkdir -p "$demo/suite" "$demo/steps"
cp -r samples/project "$demo/harbour"
cp -r samples/templates "$demo/suite/templates"
# A second project, with a script that has every kind of value to customize.
cp -r samples/project "$demo/bay"
cp samples/templates/weather*.* "$demo/bay/"
sed -i 's/^include <lantern.kez>;\r$/&\ninclude <weather.kez>;\r/' "$demo/bay/main.kez"
# A level of a J8 project, with a project file beside its main script; on the demo's drive it has folders of its own.
cp -r samples/project "$demo/town"
cp samples/j8project/* "$demo/town/"
sed -i 's|<Paths [^>]*>|<Paths proj_file="P:\\town\\" j8_file="P:\\suite\\templates\\xml\\"/>|' "$demo/town/main.xml"
cp "$demo/town/main.xml" "$demo/steps/main.xml before"
# The first project's level again, with a project file that gives its entities components.
cp -r samples/project "$demo/quay"
cp samples/quay/* "$demo/quay/"
sed -i 's|<Paths [^>]*>|<Paths proj_file="P:\\quay\\" j8_file="P:\\suite\\templates\\xml\\"/>|' "$demo/quay/main.xml"
cp "$demo/quay/main.xml" "$demo/steps/quay.xml before"
# The next release of the template set, with its catalogue.
cp -r samples/templates "$demo/newer"
cp samples/templates-newer/*.kez "$demo/newer/"
cp "$build/plugin/zoka.dll" tools/demo/*.drive "$demo/"

# Under Wine the demo's folder is a drive of its own, so that its paths are short and the same everywhere.
show() {
    tools/run/wine.sh "$wine" cmd /c exit
    ln -sfn "$demo" "$wine/dosdevices/p:"
    tools/run/wine.sh "$wine" "$build/tools/cli/zoka.exe" catalogue build 'P:\newer' --name "Harbour Lights" \
        --vers 6.3 --enginereq "6.2 PRO"
    drive demo calls
    drive customize calls-customize
    drive scripts calls-scripts
}
# The panel and the new-project dialog at their usual size and on a screen of twice the resolution.
show_sizes() {
    for dpi in 96 192; do
        drive customize-look calls-customize-look --dpi $dpi --font "Liberation Sans" --set "DPI=$dpi"
        cp "$demo/steps/main.xml before" "$demo/town/main.xml"
        cp "$demo/steps/quay.xml before" "$demo/quay/main.xml"
        drive behavior calls-behavior --dpi $dpi --font "Liberation Sans" --set "DPI=$dpi"
        drive project calls-project --dpi $dpi --font "Liberation Sans" --set "DPI=$dpi"
        drive wizard calls-wizard --dpi $dpi --font "Liberation Sans" --set "DPI=$dpi"
    done
}
drive() { # script, log, further options
    timeout -k 2 90 tools/run/wine.sh "$wine" "$build/tools/editor/zunhost.exe" --drive "P:\\$1.drive" \
        --limit 60 --log "P:\\$2.log" --pictures 'P:' --suite 'P:\suite' \
        --set 'PROJECT=P:\harbour' --set 'DLL=P:\zoka.dll' --set 'OUT=P:' "${@:3}"
}
export -f show show_sizes drive
export build demo wine

echo "running the plug-in in the stand-in editor"
status=0
tools/run/display.sh bash -euc show >"$demo/output.txt" 2>&1 || status=$?
# The session has taken the size of its screen; the next one is larger.
WINEPREFIX=$wine wineserver -k || true
WINEPREFIX=$wine wineserver -w || true
[ $status != 0 ] || ZOKA_SCREEN=2560x2048 tools/run/display.sh bash -euc show_sizes >>"$demo/output.txt" 2>&1 || status=$?
if [ -e "$demo/calls.log" ]; then
    echo "every call between the editor and the plug-in (build/demo/calls.log):"
    sed 's/^/    /' "$demo/calls.log"
fi
if [ $status != 0 ]; then
    cat "$demo/output.txt" >&2
    echo "the demo ended with $status" >&2
    exit 1
fi
echo "the main script, step by step (build/demo/steps):"
before=
for step in "$demo"/steps/[0-9]*.kez; do
    if [ -n "$before" ]; then
        name=$(basename "$step" .kez)
        echo "  $name"
        diff -u --label before --label after "$before" "$step" | tr -d '\r' | sed 's/^/    /' || true
    fi
    before=$step
done
echo "  the updated fog.kez"
diff -u --label before --label after "$demo/steps/fog.kez before its update" "$demo/harbour/fog.kez" | tr -d '\r' |
    iconv -f WINDOWS-1252 -t UTF-8 | sed 's/^/    /' || true
echo "  the project file of the town, edited and saved"
diff -u --label before --label after "$demo/steps/main.xml before" "$demo/town/main.xml" | tr -d '\r' | sed 's/^/    /' || true
echo "  weather.kez, customized and saved"
diff -u --label before --label after samples/templates/weather.kez "$demo/steps/weather.kez saved" | tr -d '\r' |
    iconv -f WINDOWS-1252 -t UTF-8 | sed 's/^/    /' || true
echo "  weather.kez, updated with these values kept, and saved"
diff -u --label before --label after "$demo/steps/weather.kez saved" "$demo/bay/weather.kez" | tr -d '\r' |
    iconv -f WINDOWS-1252 -t UTF-8 | sed 's/^/    /' || true
echo "pictures:"
for picture in "$demo"/*.png; do echo "    build/demo/$(basename "$picture")"; done
