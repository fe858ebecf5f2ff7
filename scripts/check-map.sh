#!/bin/bash
# SPDX-License-Identifier: MIT
# Fails when the map in DEVELOPERS.md misses a source of the library in the row of its folder, or
# names one that is not there.
set -euo pipefail
cd "$(dirname "$0")/.."
status=0
tick='`'
while read -r folder; do
    row=$(sed -n "s,^| .$folder/. |[^|]*|\(.*\)|\$,\1,p" DEVELOPERS.md)
    named=$(tr -c "[:alnum:]$tick" '\n' <<<"$row" | sed -n "s/^$tick\(.*\)$tick\$/\1/p" | sort)
    there=$(find "$folder" -maxdepth 1 '(' -name '*.h' -o -name '*.cpp' ')' |
        sed 's,.*/,,; s,[.][^.]*$,,' | sort -u)
    [[ $named == "$there" ]] && continue
    echo "DEVELOPERS.md, $folder/: < is named but not there or not in order, > is not named"
    diff <(echo "$named") <(echo "$there") | grep '^[<>]' || true
    status=1
done < <(find graphics2d math memory util platform '(' -name '*.h' -o -name '*.cpp' ')' \
    -printf '%h\n' | sort -u)
exit $status
