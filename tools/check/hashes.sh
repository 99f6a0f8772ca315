#!/bin/bash
# Checks that no table hashes texts by a function that whoever writes a file can know: hashes.sh [ROOT]. Prints each
# place as file:line: text and ends with 1 if there is any; util/KeyedHash.h has the tables to use.
set -eu
cd "${1:-$(dirname "$0")/../..}"
text='[ \t]*(const[ \t]+)?std::(basic_|w|u8|u16|u32)?string'
found=$(find . \( -path './.*' -o -path ./build -o -path ./tests -o -path ./bench -o -path ./fuzz \) -prune -o -type f \
    \( -name '*.h' -o -name '*.cpp' \) -exec grep -HnE "unordered_(multi)?(map|set)<$text|std::hash<$text" {} + |
    sed -E 's|^\./([^:]*:[0-9]+:)[ \t]*|\1 |')
[ -z "$found" ] || {
    echo "$found"
    exit 1
}
