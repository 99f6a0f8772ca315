#!/bin/bash
# Runs a command with a display of its own that no screen shows: display.sh COMMAND...
# The screen has ZOKA_SCREEN pixels (1280x1024). Where a display without a screen can't start, the command is not run and 1 is returned.
set -euo pipefail
number=$(mktemp)
Xvfb -displayfd 3 -screen 0 "${ZOKA_SCREEN:-1280x1024}x24" -nolisten tcp 3>"$number" >/dev/null 2>&1 </dev/null &
server=$!
trap 'kill "$server" 2>/dev/null; wait "$server" 2>/dev/null; rm -f "$number"' EXIT
for ((i = 0; i < 300; i++)); do # the server writes its number when it is ready
    [ -s "$number" ] && break
    kill -0 "$server" 2>/dev/null || break
    sleep 0.1
done
if [ ! -s "$number" ]; then
    echo "display.sh: Xvfb did not start" >&2
    exit 1
fi
DISPLAY=:$(cat "$number")
export DISPLAY
"$@" 3>&-
