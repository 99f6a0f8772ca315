#!/bin/bash
# Runs one fuzz target of the fuzz build for some seconds: fuzz.sh TARGET SECONDS
#
# It starts from the target's seeds and regressions (fuzz/seeds/TARGET, fuzz/regressions/TARGET)
# and from the corpus of earlier runs, which grows in build/corpus/TARGET. An input that breaks
# the target is left in build/fuzz/ and ends the run with an error.
set -euo pipefail
cd "$(dirname "$0")/../.."
root=$PWD # targets may change the current folder
target=$1 seconds=$2
program=$root/build/fuzz/fuzz/fuzz_$target
if [ ! -x "$program" ]; then
    echo "no fuzz target '$target'; there are:" >&2
    find build/fuzz/fuzz -maxdepth 1 -type f -name 'fuzz_*' -executable -printf '%f\n' | sed 's/^fuzz_/  /' >&2
    exit 2
fi
corpus=$root/build/corpus/$target
mkdir -p "$corpus"
options=(-max_total_time="$seconds" -artifact_prefix="$root/build/fuzz/" -timeout=10 -rss_limit_mb=4096 -print_final_stats=1)
[ ! -f "fuzz/$target.dict" ] || options+=(-dict="$root/fuzz/$target.dict")
seeds=()
for folder in "$root/fuzz/seeds/$target" "$root/fuzz/regressions/$target"; do
    [ ! -d "$folder" ] || seeds+=("$folder")
done
# The first folder is the one that grows.
exec "$program" "${options[@]}" "$corpus" "${seeds[@]}"
