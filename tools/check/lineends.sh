#!/bin/bash
# Checks that every file whose line ends are not plain LF is kept byte for byte by
# .gitattributes: lineends.sh [ROOT]. Otherwise a checkout with other settings than ours
# would change a sample or an expected result.
set -euo pipefail
cd "${1:-$(dirname "$0")/../..}"
# The checkout may belong to another user than the one who runs the tests.
git -c safe.directory='*' ls-files --eol | awk -F '\t' '
    { split($1, field, " +") }
    field[1] != "i/lf" && field[1] != "i/none" && field[3] != "attr/-text" && field[3] != "attr/binary" {
        printf "%s: has line ends %s and no -text in .gitattributes\n", $2, substr(field[1], 3)
        found = 1
    }
    END { exit found }'
