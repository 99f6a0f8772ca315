#!/bin/bash
# Checks that every source is laid out as .clang-format says: format.sh [ROOT]. Prints each place that isn't.
set -euo pipefail
cd "${1:-$(dirname "$0")/../..}"
find . -path ./build -prune -o -path './.*/*' -prune -o -type f \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 -r -n 24 -P "$(nproc)" clang-format --dry-run -Werror
