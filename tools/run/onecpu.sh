#!/usr/bin/env bash
# Runs a command on one processor: onecpu.sh N COMMAND [ARGUMENT...], N counted from 0 among those allowed, over
# again from the first when there are not so many.
#
# A Wine program and its server ask each other some thousand times for every window. Where both share a processor
# that goes two to three times as fast, and takes the same time whenever it's measured.
set -euo pipefail
cpus=()
for range in $(sed -n 's/^Cpus_allowed_list:\s*//p' /proc/self/status | tr , ' '); do
    # shellcheck disable=SC2207 # numbers
    cpus+=($(seq "${range%-*}" "${range#*-}"))
done
exec taskset -c "${cpus[$1 % ${#cpus[@]}]}" "${@:2}"
